// What the window is drawn with: colors, type, lengths. Pixels are device-independent.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRectF>
#include <QString>

namespace flowtide::theme {

// Grounds and lines, from dark to light.
constexpr QColor well{0x0D, 0x0F, 0x12};      ///< viewer, plot, lane grounds, fields; text on colored fills
constexpr QColor pane{0x14, 0x17, 0x1B};      ///< bars and panes; chips that lie on the picture
constexpr QColor raised{0x1B, 0x1F, 0x25};    ///< sheets, menus, panels, chips in the letterbox, pressed buttons
constexpr QColor control{0x23, 0x28, 0x30};   ///< buttons, hovered rows, toggles that are on
constexpr QColor controlHi{0x2E, 0x35, 0x3F}; ///< hovered buttons, chosen segments, highlighted menu rows, tips
constexpr QColor hairline{0x26, 0x2C, 0x34};
constexpr QColor border{0x3A, 0x42, 0x4E}; ///< around sheets and menus; tracks of sliders and progress; minor ticks
constexpr QColor edge{0x5B, 0x65, 0x73};   ///< field borders, switches that are off
constexpr QColor scrim{0x07, 0x08, 0x0A, 168};

constexpr QColor text{0xE9, 0xEC, 0xF0};
constexpr QColor text2{0xA0, 0xA8, 0xB4};        ///< labels, hints, idle icons
constexpr QColor text3{0x69, 0x72, 0x7F};        ///< disabled text, major ticks, hatching
constexpr QColor iconDisabled{0x4A, 0x52, 0x5E}; ///< disabled icon buttons
constexpr QColor fieldHover{0x8A, 0x93, 0xA1};   ///< hovered field borders, the sound lane
constexpr QColor emphasized{0x56, 0x60, 0x71};   ///< the graph's neutral line

// Each means one thing.
constexpr QColor curve{0x2D, 0xD4, 0xBF};   ///< the speed curve
constexpr QColor framing{0x63, 0xE6, 0xE2}; ///< the framing curve, the crop, tracked stretches
constexpr QColor flow{0xA7, 0x8B, 0xFA};    ///< Optical Flow
constexpr QColor zoom{0x5B, 0x9D, 0xFF};
constexpr QColor trim{0xF7, 0xB9, 0x55};
constexpr QColor trimHover{0xFF, 0xD0, 0x83};
constexpr QColor playhead{0xFF, 0x63, 0x69};  ///< and nothing else
constexpr QColor attention{0xFF, 0x8F, 0x45}; ///< needs the user
constexpr QColor verified{0x6B, 0xD6, 0x8E};

// Radii.
constexpr double sheetRadius = 8;
constexpr double controlRadius = 6;
constexpr double laneRadius = 4;

/// `opacity`: 0...1.
inline QColor faded(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}
/// Between two colors; `share` of the second, 0...1.
QColor mixed(QColor first, QColor second, double share);

enum class Type {
    headline,   ///< 20/24 600
    sheetTitle, ///< 16/24 600
    title,      ///< 13/16 600
    lead,       ///< 13/20
    body,       ///< 12/16
    label,      ///< 12/16 500
    labelBold,  ///< 12/16 600
    small,      ///< 11/16
    smallBold,  ///< 11/16 600
    caps,       ///< 11/16 600, spaced, for upper case
    readout,    ///< monospaced 13/18 500
    code,       ///< monospaced 12/16
    codeSmall,  ///< monospaced 11/16
    codeBold    ///< monospaced 11/16 600
};

/// Ready to use; measured in pixels.
QFont font(Type type);
/// The height of a line, pixels.
int lineHeight(Type type);

/// Draws a line of text in a rectangle, centred vertically.
void drawLine(QPainter& painter, const QRectF& rect, Qt::Alignment horizontal, Type type, QColor color,
              const QString& words);
/// The same with every digit as wide as the widest, for numbers that change.
void drawTabular(QPainter& painter, const QRectF& rect, Qt::Alignment horizontal, Type type, QColor color,
                 const QString& words);
double textWidth(Type type, const QString& words);
double tabularWidth(Type type, const QString& words);

/// The width of a hairline on this device: one device pixel below a scale of 2, two from there on.
double hairlineWidth(const QPainter& painter);
/// A rectangle whose edges lie on the nearest edges of device pixels.
QRectF onPixels(const QPainter& painter, const QRectF& rect);
/// Hairlines along the inner edges of a rectangle.
enum class Side { top, bottom, left, right };
void drawHairline(QPainter& painter, const QRectF& rect, Side side, QColor color = hairline);
/// A rounded rectangle with an outline of that many pixels inside its edges; without one when `outline` is invalid.
void drawBox(QPainter& painter, const QRectF& rect, double radius, QColor fill, QColor outline = {},
             double outlineWidth = 1);

} // namespace flowtide::theme
