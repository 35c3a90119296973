// What the full-screen preview is operated with.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/buttons.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>
#include <vector>

namespace flowtide {

class ScrubBar;

/// A scrub bar over a row of times and buttons, on a ground that darkens towards the edge.
class FullScreenControls final : public QWidget {
    Q_OBJECT

public:
    static constexpr int controlsHeight = 200;

    FullScreenControls(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent);

    /// Called when the pointer is used on it.
    std::function<void()> onTouched;
    /// Whether something of it is in use.
    bool isHeld() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    IconButton* add(const QString& icon, const QString& name, const QString& tip, std::function<void()> act);
    void refresh();

    FlowtideViewModel& model_;
    ScrubBar* scrub_;
    std::vector<IconButton*> center_;
    std::vector<IconButton*> right_;
    IconButton* play_;
    IconButton* loop_;
    IconButton* mute_;
    Subscription changes_;
};

} // namespace flowtide
