// The recent projects beside the viewer.
#pragma once

#include "ui/controls/scroll_area.h"
#include "ui/panes/project_button.h"
#include "ui/session_host.h"

#include <QWidget>
#include <functional>
#include <vector>

namespace flowtide {

class ProjectsSidebar final : public QWidget {
    Q_OBJECT

public:
    explicit ProjectsSidebar(SessionHost& host, QWidget* parent = nullptr);

    std::function<void(const RecentProject& project)> onProject;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();

    FlowtideViewModel& model_;
    ProjectSummaries summaries_;
    SlimScrollArea* area_;
    QWidget* list_;
    std::vector<ProjectButton*> rows_; ///< children of the list; those that are not needed are hidden
    Subscription changes_;
};

} // namespace flowtide
