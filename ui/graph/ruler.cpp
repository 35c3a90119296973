#include "ui/graph/ruler.h"

#include "ui/theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr double majorTick = 8;
constexpr double minorTick = 4;
constexpr double labelGap = 4; ///< from a tick to its label
constexpr double edge = 4;     ///< that the time codes keep from the timeline's edges
constexpr double sourceWidth = 72;
constexpr double outputWidth = 96;
constexpr double hoursWidth = 14; ///< more, from an hour on
constexpr double codeHeight = 18;
constexpr double hourSeconds = 3600;
} // namespace

PlayheadHead PlayheadHead::of(double x, double width, double top, bool isLong) {
    const double more = isLong ? hoursWidth : 0;
    PlayheadHead head;
    head.source = QRectF(0, top, sourceWidth + more, codeHeight);
    const double output = outputWidth + more;
    const double left = std::min(x - head.source.width() / 2, width - edge - head.source.width() - output);
    head.source.moveLeft(std::max(left, edge));
    head.output = QRectF(head.source.right(), top, output, codeHeight);
    return head;
}

bool PlayheadHead::isLong(const TimelineContext& context) {
    return std::max(context.duration(), context.model().curve().timeMap().outputDuration()) >= hourSeconds;
}

Ruler::Ruler(TimelineContext& context, QWidget* parent)
    : QWidget(parent)
    , context_(context) {
    connect(&context, &TimelineContext::axisChanged, this, qOverload<>(&QWidget::update));
    changes_ = context.model().subscribe(properties({Property::clip, Property::scrubPosition}),
                                         [this](const PropertySet&) { update(); });
}

void Ruler::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    theme::drawHairline(painter, rect(), theme::Side::bottom);
    const TimeAxis& axis = context_.axis();
    if (axis.duration <= 0) return;
    if (axis.isMagnified()) {
        const double left = axis.left + axis.start / axis.duration * axis.width;
        painter.fillRect(theme::onPixels(painter, QRectF(left, 0, axis.span / axis.duration * axis.width, 2)),
                         theme::text3);
    }

    const double playhead = context_.model().playheadSeconds();
    const QRectF head = axis.shows(playhead)
                            ? PlayheadHead::of(axis.xOf(playhead), width(), 0, PlayheadHead::isLong(context_)).both()
                            : QRectF();
    const RulerSteps steps = rulerSteps(axis.pixelsPerSecond());
    const double minor = steps.major / steps.minorCount;
    const auto first = static_cast<qint64>(std::ceil(axis.start / minor - 1e-9));
    const auto last = static_cast<qint64>(std::floor(std::min(axis.end(), axis.duration) / minor + 1e-9));
    for (qint64 i = first; i <= last; ++i) {
        const bool isMajor = i % steps.minorCount == 0;
        const double seconds = static_cast<double>(i) * minor;
        const double x = axis.xOf(seconds);
        const double length = isMajor ? majorTick : minorTick;
        theme::drawHairline(painter, QRectF(x, height() - length, 1, length), theme::Side::left,
                            isMajor ? theme::text3 : theme::border);
        if (!isMajor) continue;
        const QString label = rulerLabel(seconds, steps.major);
        const QRectF box(x + labelGap, 2, theme::textWidth(theme::Type::small, label), codeHeight - 4);
        const bool isHidden =
            box.right() > width() || (!head.isNull() && box.right() + 2 > head.left() && box.left() - 2 < head.right());
        if (!isHidden) theme::drawLine(painter, box, Qt::AlignLeft, theme::Type::small, theme::text2, label);
    }
}

void Ruler::mousePressEvent(QMouseEvent* event) {
    scrub_.press(*event);
}

void Ruler::mouseMoveEvent(QMouseEvent* event) {
    scrub_.move(*event);
}

void Ruler::mouseReleaseEvent(QMouseEvent* event) {
    scrub_.release(*event);
}

} // namespace flowtide
