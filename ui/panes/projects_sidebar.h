// The recent projects beside the viewer.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class ProjectsSidebar final : public QWidget {
    Q_OBJECT

public:
    explicit ProjectsSidebar(SessionHost& host, QWidget* parent = nullptr);

    std::function<void(const RecentProject& project)> onProject;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
