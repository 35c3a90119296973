#include "ui/panes/relink_view.h"

#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

RelinkView::RelinkView(SessionHost&, QWidget* parent)
    : QWidget(parent) {}

void RelinkView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
