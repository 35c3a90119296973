#include "ui/viewer/full_screen_preview.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

FullScreenPreview::FullScreenPreview(SessionHost&, std::function<void(Command)>)
    : QWidget() {}

void FullScreenPreview::open(const QWidget&) {}
void FullScreenPreview::leave() {}

void FullScreenPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
