#include "ui/viewer/viewer_pane.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

ViewerPane::ViewerPane(SessionHost&, QWidget* parent)
    : QWidget(parent) {}

bool ViewerPane::endTopmost() {
    return false;
}

void ViewerPane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
