#include "ui/graph/timeline_overlay.h"

#include "ui/graph/ruler.h"
#include "ui/graph/timeline_layout.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

constexpr double dotRadius = 3;
constexpr double pointLength = 4; ///< of the head, below its codes
constexpr double labelHeight = 44;
constexpr double labelPadding = 12;
constexpr double labelDistance = 22; ///< from a dragged point, to the side
constexpr double labelRise = 6;      ///< above it
constexpr double labelGap = 16;
constexpr double codeHeight = 18;
constexpr double trimCodeWidth = 72;

double labelWidth(const DragLabel& label) {
    using namespace theme;
    const double first = textWidth(Type::labelBold, label.value) + labelGap / 2 +
                         textWidth(Type::codeSmall, label.time) + labelGap +
                         textWidth(Type::codeSmall, label.difference);
    return std::ceil(std::max(first, textWidth(Type::small, label.widestLine)) + 2 * labelPadding);
}

QRectF boxOf(const DragLabel& label) {
    QRectF box(label.place.x() + labelDistance, label.place.y() - labelRise - labelHeight, labelWidth(label),
               labelHeight);
    if (box.right() > label.bounds.right()) box.moveRight(label.place.x() - labelDistance);
    // Beside the point it hides nothing of it, however high that is.
    box.moveTop(std::max(box.top(), label.bounds.top()));
    return box;
}

void paint(QPainter& painter, const DragLabel& label) {
    using namespace theme;
    const QRectF box = onPixels(painter, boxOf(label));
    drawBox(painter, box, controlRadius, control, border);
    QRectF line(box.left() + labelPadding, box.top() + 5, box.width() - 2 * labelPadding, 18);
    drawLine(painter, line, Qt::AlignLeft, Type::labelBold, label.color, label.value);
    drawLine(painter, line, Qt::AlignRight, Type::codeSmall, text2, label.difference);
    line.setLeft(line.left() + textWidth(Type::labelBold, label.value) + labelGap / 2);
    drawLine(painter, line, Qt::AlignLeft, Type::codeSmall, theme::text, label.time);
    line = QRectF(box.left() + labelPadding, box.top() + 22, box.width() - 2 * labelPadding, 16);
    drawLine(painter, line, Qt::AlignLeft, Type::small, text2, label.line);
}

QRectF boxOf(const TrimLabel& label, double width) {
    QRectF box(label.place.x() - trimCodeWidth / 2, label.place.y() - codeHeight,
               std::max(trimCodeWidth, theme::textWidth(theme::Type::codeBold, label.text) + 8), codeHeight);
    box.moveLeft(std::clamp(box.left(), 4.0, std::max(width - 4 - box.width(), 4.0)));
    return box;
}

} // namespace

TimelineOverlay::TimelineOverlay(TimelineContext& context, QWidget* parent)
    : QWidget(parent)
    , context_(context) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    connect(&context, &TimelineContext::axisChanged, this, &TimelineOverlay::updatePlayhead);
    connect(&context, &TimelineContext::labelsChanged, this, &TimelineOverlay::updateLabels);
    changes_ = context.model().subscribe(properties({Property::clip, Property::scrubPosition, Property::keyframes,
                                                     Property::curveSmoothing, Property::trimRange}),
                                         [this](const PropertySet&) { updatePlayhead(); });
}

void TimelineOverlay::setCurveHeight(std::optional<double> y) {
    if (curveY_ == y) return;
    curveY_ = y;
    updatePlayhead();
}

QRect TimelineOverlay::playheadArea() const {
    const TimeAxis& axis = context_.axis();
    const double playhead = context_.model().playheadSeconds();
    if (axis.duration <= 0 || !axis.shows(playhead)) return {};
    const double x = axis.xOf(playhead);
    return QRectF(x - dotRadius - 3, 0, 2 * dotRadius + 6, height()).toAlignedRect();
}

void TimelineOverlay::updatePlayhead() {
    const QRect area = playheadArea();
    const auto codes = [&](const QRect& line) {
        return line.isNull() ? QRect()
                             : PlayheadHead::of(line.center().x(), width(), codesTop_, PlayheadHead::isLong(context_))
                                   .both()
                                   .adjusted(-2, -1, 2, pointLength + 1)
                                   .toAlignedRect();
    };
    for (const QRect& line : {paintedPlayhead_, area}) {
        update(line);
        update(codes(line));
    }
    paintedPlayhead_ = area;
}

void TimelineOverlay::updateLabels() {
    QRect area;
    if (const auto& label = context_.dragLabel()) area |= boxOf(*label).translated(-pos()).toAlignedRect();
    if (const auto& label = context_.trimLabel()) area |= boxOf(*label, width()).translated(-pos()).toAlignedRect();
    area = area.isNull() ? area : area.adjusted(-2, -2, 2, 2);
    update(paintedLabels_);
    update(area);
    paintedLabels_ = area;
}

void TimelineOverlay::paintPlayhead(QPainter& painter) const {
    const TimeAxis& axis = context_.axis();
    const double playhead = context_.model().playheadSeconds();
    if (axis.duration <= 0 || !axis.shows(playhead)) return;
    using namespace theme;
    const double x = axis.xOf(playhead);
    const PlayheadHead head = PlayheadHead::of(x, width(), codesTop_, PlayheadHead::isLong(context_));
    const QRectF line = onPixels(painter, QRectF(x, head.source.bottom(), 1, height() - head.source.bottom()));
    drawHairline(painter, line, Side::left, theme::playhead);

    painter.setRenderHint(QPainter::Antialiasing);
    const double middle = line.left() + hairlineWidth(painter) / 2;
    if (curveY_) {
        painter.setPen(QPen(well, 1));
        painter.setBrush(theme::playhead);
        painter.drawEllipse(QPointF(middle, *curveY_), dotRadius, dotRadius);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::playhead);
    const double base = head.source.bottom() - 1;
    painter.drawPolygon(
        QPolygonF{{middle - pointLength, base}, {middle + pointLength, base}, {middle, base + pointLength + 1}});
    painter.setRenderHint(QPainter::Antialiasing, false);
    drawBox(painter, head.output.adjusted(-laneRadius, 0, 0, 0), laneRadius, control);
    drawBox(painter, head.source, laneRadius, theme::playhead);
    drawLine(painter, head.source, Qt::AlignHCenter, Type::codeBold, well, valueText::timeCode(playhead));
    const QRectF words = head.output.adjusted(8, 0, -6, 0);
    drawLine(painter, words, Qt::AlignLeft, Type::small, text2, tr("out"));
    const double output = context_.model().curve().timeMap().outputTime({playhead}).value;
    drawLine(painter, words, Qt::AlignRight, Type::codeSmall, theme::text, valueText::timeCode(output));
}

void TimelineOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!context_.model().clip()) return;
    paintPlayhead(painter);
    painter.translate(-pos());
    if (const auto& label = context_.dragLabel()) paint(painter, *label);
    if (const auto& label = context_.trimLabel()) {
        const QRectF box = boxOf(*label, width());
        theme::drawBox(painter, box, theme::laneRadius, theme::trimHover);
        theme::drawLine(painter, box, Qt::AlignHCenter, theme::Type::codeBold, theme::well, label->text);
    }
}

} // namespace flowtide
