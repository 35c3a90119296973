#include "ui/panes/start_screen.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

StartScreen::StartScreen(SessionHost&, std::function<void(Command)>, QWidget* parent)
    : QWidget(parent) {}

void StartScreen::showDrop(const QString&, bool) {}

void StartScreen::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
