#include "ui/panes/alert_sheet.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

AlertSheet::AlertSheet(SessionHost&, QWidget* parent)
    : QWidget(parent) {}

void AlertSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
