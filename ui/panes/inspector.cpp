#include "ui/panes/inspector.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

Inspector::Inspector(SessionHost&, QWidget* parent)
    : QWidget(parent) {}

void Inspector::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
