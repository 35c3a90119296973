#include "ui/viewer/readout.h"

#include "ui/accessible_role.h"
#include "ui/theme.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr double labelHeight = 16;
constexpr double valueHeight = 18;
} // namespace

Readout::Readout(const QString& label, QColor color, QWidget* parent)
    : QWidget(parent)
    , label_(label)
    , color_(color) {
    setAccessibleName(label);
    setAccessibleRole(*this, QAccessible::StaticText);
}

void Readout::setValue(const QString& value, const QString& rest) {
    if (value == value_ && rest == rest_) return;
    const bool isLonger = value.size() != value_.size() || rest.size() != rest_.size();
    value_ = value;
    rest_ = rest;
    setAccessibleName(label_ + u' ' + value + rest);
    if (isLonger) updateGeometry();
    update();
}

QSize Readout::sizeHint() const {
    const double width =
        std::max(theme::textWidth(theme::Type::small, label_), theme::textWidth(theme::Type::readout, value_ + rest_));
    return {static_cast<int>(std::ceil(width)), static_cast<int>(labelHeight + valueHeight)};
}

void Readout::paintEvent(QPaintEvent*) {
    using theme::Type;
    QPainter painter(this);
    theme::drawLine(painter, QRectF(0, 0, width(), labelHeight), Qt::AlignLeft, Type::small, theme::text2, label_);
    const QRectF line(0, labelHeight, width(), valueHeight);
    theme::drawLine(painter, line, Qt::AlignLeft, Type::readout, color_, value_);
    const double left = theme::textWidth(Type::readout, value_);
    theme::drawLine(painter, line.adjusted(left, 0, 0, 0), Qt::AlignLeft, Type::readout, theme::text2, rest_);
}

} // namespace flowtide
