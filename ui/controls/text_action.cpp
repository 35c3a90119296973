#include "ui/controls/text_action.h"

#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QPainter>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr int actionHeight = 24;
constexpr double signSize = 14;
constexpr double signGap = 4;
} // namespace

TextAction::TextAction(const QString& text, QString icon, QWidget* parent)
    : QPushButton(text, parent)
    , icon_(std::move(icon)) {
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, theme::controlRadius);
    resize(TextAction::sizeHint());
}

QSize TextAction::sizeHint() const {
    const double width = signSize + signGap + theme::textWidth(theme::Type::small, text()) + 2 * overhang;
    return {static_cast<int>(std::ceil(width)), actionHeight};
}

void TextAction::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    const QColor ground = isEnabled() ? hover_.color(faded(control, 0), control, raised) : faded(control, 0);
    drawBox(painter, rect(), controlRadius, ground);
    const QColor ink = isEnabled() ? hover_.color(text2, theme::text, theme::text) : text3;
    icons::draw(painter, icon_, QRectF(overhang, 0, signSize, height()), signSize, ink);
    drawLine(painter, QRectF(rect()).adjusted(overhang + signSize + signGap, 0, -overhang, 0), Qt::AlignLeft,
             Type::small, ink, text());
}

} // namespace flowtide
