#include "ui/panes/shortcut_sheet.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

ShortcutSheet::ShortcutSheet(QWidget* parent)
    : QWidget(parent) {}

void ShortcutSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
