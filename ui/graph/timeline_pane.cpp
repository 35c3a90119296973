#include "ui/graph/timeline_pane.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

TimelinePane::TimelinePane(SessionHost&, QWidget* parent)
    : QWidget(parent) {}

void TimelinePane::perform(Command) {}
void TimelinePane::setPictureHint(const QString&) {}
QWidget* TimelinePane::graph() const {
    return nullptr;
}

void TimelinePane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
