#include "ui/controls/switch.h"

#include "ui/controls/focus_ring.h"
#include "ui/theme.h"

#include <QPainter>

namespace flowtide {

namespace {
constexpr double knobSize = 12;
constexpr double knobInset = 2;
} // namespace

Switch::Switch(const QString& name, QColor color, QWidget* parent)
    : QCheckBox(parent)
    , color_(color) {
    setAccessibleName(name);
    setFixedSize(28, 16);
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, 8);
    connect(this, &QCheckBox::toggled, this, [this](bool isOn) {
        // What the user has not seen yet does not move.
        if (isVisible())
            knob_.moveTo(isOn ? 1 : 0);
        else
            knob_.jumpTo(isOn ? 1 : 0);
    });
}

void Switch::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    const QColor off = hover_.color(edge, QColor(0x7A, 0x84, 0x92), QColor(0x7A, 0x84, 0x92));
    drawBox(painter, rect(), height() / 2.0, mixed(off, color_, knob_.value()));
    const double travel = width() - knobSize - 2 * knobInset;
    painter.setPen(Qt::NoPen);
    painter.setBrush(well);
    painter.drawEllipse(QRectF(knobInset + travel * knob_.value(), knobInset, knobSize, knobSize));
}

} // namespace flowtide
