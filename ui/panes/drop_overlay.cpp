#include "ui/panes/drop_overlay.h"

#include "ui/panes/drop_target.h"
#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

namespace {
constexpr QSizeF boxSize{560, 120};
constexpr double boxRadius = 12;
} // namespace

DropOverlay::DropOverlay(QWidget& window)
    : QWidget(&window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DropOverlay::showDrop(const QString& name, bool isOpenable) {
    name_ = name;
    isOpenable_ = isOpenable;
    setVisible(!name.isEmpty());
    if (name.isEmpty()) return;
    setGeometry(parentWidget()->rect());
    raise();
    update();
}

void DropOverlay::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    painter.fillRect(rect(), scrim);
    QRectF box(QPointF(), boxSize);
    box.moveCenter(QRectF(rect()).center());
    drawBox(painter, box, boxRadius, isOpenable_ ? control : pane, isOpenable_ ? theme::text : attention, 2);
    const QRectF words = box.adjusted(24, 0, -24, 0);
    const QFontMetricsF metrics(theme::font(Type::sheetTitle));
    drawLine(painter, words, Qt::AlignHCenter, Type::sheetTitle, theme::text,
             metrics.elidedText(DropTarget::dropSentence(name_, isOpenable_), Qt::ElideMiddle, words.width()));
}

} // namespace flowtide
