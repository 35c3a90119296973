// What is there before a clip is open.
#pragma once

#include "ui/controls/labels.h"
#include "ui/controls/scroll_area.h"
#include "ui/panes/drop_target.h"
#include "ui/panes/project_button.h"
#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

namespace flowtide {

/// How many cards stand side by side in a window of some width.
int cardColumns(int width);

class StartScreen final : public QWidget {
    Q_OBJECT

public:
    StartScreen(SessionHost& host, std::function<void(Command)> perform, QWidget* parent = nullptr);

    /// Opens one of the recent projects.
    std::function<void(const RecentProject& project)> onProject;
    /// What is dragged over the window: its name, and whether it can be opened; empty: nothing.
    void showDrop(const QString& name, bool isOpenable) { target_->showDrop(name, isOpenable); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Content;
    void refresh();
    void followOpening();
    void place();

    FlowtideViewModel& model_;
    ProjectSummaries summaries_;
    SlimScrollArea* area_;
    Content* content_;
    DropTarget* target_;
    std::vector<ProjectButton*> cards_; ///< children of the content; those that are not needed are hidden
    int shownCards_ = 0;
    QTimer opening_;
    Subscription changes_;
};

} // namespace flowtide
