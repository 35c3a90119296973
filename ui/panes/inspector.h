// Values of the curve, the framing and the clip.
#pragma once

#include "ui/panes/inspector_session.h"
#include "ui/session_host.h"

#include <QStackedWidget>
#include <QTabBar>
#include <QWidget>
#include <functional>

namespace flowtide {

/// Its pages, in their order.
enum class WorkspaceInspectorTab { speed, framing, clip };

/// Its tab follows the curve that the graph edits, unless it shows the clip.
class Inspector final : public QWidget {
    Q_OBJECT

public:
    explicit Inspector(SessionHost& host, QWidget* parent = nullptr);
    explicit Inspector(const InspectorSession& session, QWidget* parent = nullptr);

    WorkspaceInspectorTab tab() const { return static_cast<WorkspaceInspectorTab>(tabs_->currentIndex()); }
    void setTab(WorkspaceInspectorTab tab) { tabs_->setCurrentIndex(static_cast<int>(tab)); }

    /// Whether the page is in view that says why a preview has failed; called as that changes.
    std::function<void(bool isShown)> onSpeedPageShown;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    class Tabs;

    void tellSpeedPage();

    FlowtideViewModel& model_;
    QTabBar* tabs_;
    QStackedWidget* pages_;
    Subscription changes_;
};

} // namespace flowtide
