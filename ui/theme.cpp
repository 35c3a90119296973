#include "ui/theme.h"

#include <QFontMetricsF>
#include <QHash>
#include <QPaintDevice>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide::theme {

namespace {

constexpr std::size_t typeCount = static_cast<std::size_t>(Type::codeBold) + 1;

QFont made(Type type) {
    const auto sans = [](int pixels, QFont::Weight weight) {
        QFont font(QStringList{QStringLiteral("Inter"), QStringLiteral("sans-serif")});
        font.setPixelSize(pixels);
        font.setWeight(weight);
        return font;
    };
    const auto mono = [](int pixels, QFont::Weight weight) {
        QFont font(QStringList{QStringLiteral("JetBrains Mono"), QStringLiteral("monospace")});
        font.setPixelSize(pixels);
        font.setWeight(weight);
        font.setStyleHint(QFont::Monospace);
        // Its ligatures would join "->" and ":".
        font.setStyleStrategy(QFont::PreferNoShaping);
        return font;
    };
    switch (type) {
    case Type::headline:
        return sans(20, QFont::DemiBold);
    case Type::sheetTitle:
        return sans(16, QFont::DemiBold);
    case Type::title:
        return sans(13, QFont::DemiBold);
    case Type::lead:
        return sans(13, QFont::Normal);
    case Type::body:
        return sans(12, QFont::Normal);
    case Type::label:
        return sans(12, QFont::Medium);
    case Type::labelBold:
        return sans(12, QFont::DemiBold);
    case Type::small:
        return sans(11, QFont::Normal);
    case Type::smallBold:
        return sans(11, QFont::DemiBold);
    case Type::caps: {
        QFont font = sans(11, QFont::DemiBold);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.06 * 11);
        return font;
    }
    case Type::readout:
        return mono(13, QFont::Medium);
    case Type::code:
        return mono(12, QFont::Normal);
    case Type::codeSmall:
        return mono(11, QFont::Normal);
    case Type::codeBold:
        return mono(11, QFont::DemiBold);
    }
    return {};
}

double widestDigit(const QFontMetricsF& metrics) {
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    return widest;
}

double advance(const QFontMetricsF& metrics, double digitWidth, QChar character) {
    return character.isDigit() ? digitWidth : metrics.horizontalAdvance(character);
}

double width(const QFontMetricsF& metrics, double digitWidth, const QString& words) {
    double sum = 0;
    for (const QChar character : words)
        sum += advance(metrics, digitWidth, character);
    return sum;
}

double leftOf(const QRectF& rect, Qt::Alignment horizontal, double width) {
    if (horizontal & Qt::AlignRight) return rect.right() - width;
    if (horizontal & Qt::AlignHCenter) return rect.center().x() - width / 2;
    return rect.left();
}

/// Baselines lie on whole pixels, so that a row's texts stand on one line.
double baseline(const QRectF& rect, const QFontMetricsF& metrics) {
    return std::round(rect.center().y() + (metrics.ascent() - metrics.descent()) / 2);
}

} // namespace

QColor mixed(QColor first, QColor second, double share) {
    const auto mix = [&](float a, float b) { return a + (b - a) * static_cast<float>(share); };
    return QColor::fromRgbF(mix(first.redF(), second.redF()), mix(first.greenF(), second.greenF()),
                            mix(first.blueF(), second.blueF()), mix(first.alphaF(), second.alphaF()));
}

QFont font(Type type) {
    // Fonts are of the main thread, which is the only one that draws.
    static const std::array<QFont, typeCount> fonts = [] {
        std::array<QFont, typeCount> all;
        for (std::size_t index = 0; index < typeCount; ++index)
            all[index] = made(static_cast<Type>(index));
        return all;
    }();
    return fonts[static_cast<std::size_t>(type)];
}

int lineHeight(Type type) {
    switch (type) {
    case Type::headline:
    case Type::sheetTitle:
        return 24;
    case Type::lead:
        return 20;
    case Type::readout:
        return 18;
    default:
        return 16;
    }
}

void drawLine(QPainter& painter, const QRectF& rect, Qt::Alignment horizontal, Type type, QColor color,
              const QString& words) {
    painter.setFont(font(type));
    painter.setPen(color);
    const QFontMetricsF metrics(font(type));
    // Words are laid out to be measured, which costs as much as to draw them.
    const bool isMeasured = horizontal & (Qt::AlignRight | Qt::AlignHCenter);
    const double left = leftOf(rect, horizontal, isMeasured ? metrics.horizontalAdvance(words) : 0);
    painter.drawText(QPointF(left, baseline(rect, metrics)), words);
}

void drawTabular(QPainter& painter, const QRectF& rect, Qt::Alignment horizontal, Type type, QColor color,
                 const QString& words) {
    painter.setFont(font(type));
    painter.setPen(color);
    const QFontMetricsF metrics(font(type));
    const double digitWidth = widestDigit(metrics);
    double left = leftOf(rect, horizontal, width(metrics, digitWidth, words));
    const double base = baseline(rect, metrics);
    for (const QChar character : words) {
        const double room = advance(metrics, digitWidth, character);
        painter.drawText(QPointF(left + (room - metrics.horizontalAdvance(character)) / 2, base), QString(character));
        left += room;
    }
}

double textWidth(Type type, const QString& words) {
    return QFontMetricsF(font(type)).horizontalAdvance(words);
}

double tabularWidth(Type type, const QString& words) {
    const QFontMetricsF metrics(font(type));
    return width(metrics, widestDigit(metrics), words);
}

double hairlineWidth(const QPainter& painter) {
    const double scale = painter.device()->devicePixelRatioF();
    return (scale < 2 ? 1 : 2) / scale;
}

QRectF onPixels(const QPainter& painter, const QRectF& rect) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QPointF topLeft(std::round(device.left()), std::round(device.top()));
    const QPointF bottomRight(std::round(device.right()), std::round(device.bottom()));
    return toDevice.inverted().mapRect(QRectF(topLeft, bottomRight));
}

void drawHairline(QPainter& painter, const QRectF& rect, Side side, QColor color) {
    const double width = hairlineWidth(painter);
    const QRectF whole = onPixels(painter, rect);
    QRectF line = whole;
    switch (side) {
    case Side::top:
        line.setHeight(width);
        break;
    case Side::bottom:
        line.setTop(whole.bottom() - width);
        break;
    case Side::left:
        line.setWidth(width);
        break;
    case Side::right:
        line.setLeft(whole.right() - width);
        break;
    }
    painter.fillRect(line, color);
}

void drawBox(QPainter& painter, const QRectF& rect, double radius, QColor fill, QColor outline, double outlineWidth) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
    if (outline.isValid()) {
        const double inset = outlineWidth / 2;
        painter.setPen(QPen(outline, outlineWidth));
        painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
    } else {
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(rect, radius, radius);
    }
    painter.restore();
}

} // namespace flowtide::theme
