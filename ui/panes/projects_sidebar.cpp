#include "ui/panes/projects_sidebar.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

ProjectsSidebar::ProjectsSidebar(SessionHost&, QWidget* parent)
    : QWidget(parent) {}

void ProjectsSidebar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
