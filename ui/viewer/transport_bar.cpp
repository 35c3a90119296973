#include "ui/viewer/transport_bar.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

TransportBar::TransportBar(SessionHost&, std::function<void(Command)>, QWidget* parent)
    : QWidget(parent) {}

void TransportBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
