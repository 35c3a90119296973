#include "ui/graph/curve_graph_painter.h"

#include "core/keyframe_rules.h"
#include "ui/graph/point_labels.h"
#include "ui/graph/point_marks.h"
#include "ui/theme.h"

#include <QImage>
#include <QLineF>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

using namespace theme;

constexpr double curveWidth = 2;
constexpr double editedWidth = 1.25; ///< of the curve that is edited, where another one is seen
constexpr double dotDistance = 4;    ///< pixels, of the curve as it was
constexpr double labelBeforePlot = 10;
constexpr double wordBeforePlot = 7; ///< words are longer than numbers
constexpr double guideGap = 10;

/// Whether a line turns by more than some 10 degrees.
bool isBend(QPointF before, QPointF at, QPointF after) {
    constexpr double sine = 0.17;
    const QPointF in = at - before;
    const QPointF out = after - at;
    const double turn = in.x() * out.y() - in.y() * out.x();
    return turn * turn > sine * sine * QPointF::dotProduct(in, in) * QPointF::dotProduct(out, out);
}

class Painting {
public:
    Painting(QPainter& painter, const CurveGraphPicture& picture, const QRectF& rect, const QRectF& clip)
        : painter_(painter)
        , picture_(picture)
        , plot_(picture.geometry.plot())
        , rect_(rect)
        , clip_(clip) {}

    void paint() {
        painter_.fillRect(rect_, well);
        drawHairline(painter_, rect_, Side::bottom);
        if (picture_.geometry.time.duration <= 0) return;
        paintGrid();
        paintTicks();
        inPlot([&] {
            paintBands();
            paintGuide();
            paintCurves();
            paintOutside();
            paintDrag();
        });
        paintTrimLines();
        paintAxisLabels();
        paintPoints();
        paintLabels();
        paintMarquee();
    }

private:
    double x(double seconds) const { return picture_.geometry.time.xOf(seconds); }
    double y(double value) const { return picture_.geometry.yOf(value); }

    /// Curves may touch the plot's upper and lower edge.
    template <typename Draw>
    void inPlot(Draw draw) {
        painter_.save();
        painter_.setClipRect(plot_.adjusted(0, -curveWidth, 0, curveWidth), Qt::IntersectClip);
        draw();
        painter_.restore();
    }
    void horizontal(double at, QColor color) {
        drawHairline(painter_, QRectF(plot_.left(), at, plot_.width(), 1), Side::top, color);
    }
    void vertical(double at, double top, double bottom, QColor color) {
        drawHairline(painter_, QRectF(at, top, 1, bottom - top), Side::left, color);
    }

    void paintGrid() {
        const TimeAxis& time = picture_.geometry.time;
        const RulerSteps steps = rulerSteps(time.pixelsPerSecond());
        const double end = std::min(time.end(), time.duration);
        for (double at = std::ceil(time.start / steps.major - 1e-9) * steps.major; at <= end + 1e-9; at += steps.major)
            vertical(x(at), plot_.top(), plot_.bottom(), faded(hairline, 0.7));
        const ValueRange& window = picture_.geometry.window;
        const double slack = 1e-9;
        for (const double value : picture_.axis.gridValues) {
            if (value < window.lower * (1 - slack) || value > window.upper * (1 + slack)) continue;
            const bool isEmphasized = value == picture_.axis.emphasizedGridValue;
            horizontal(y(value), isEmphasized ? emphasized : faded(border, 0.75));
        }
    }

    void paintTicks() {
        for (const auto& tick : picture_.ticks) {
            const double length = tick.isTall ? 6 : 3;
            vertical(tick.x, plot_.top() - length, plot_.top(), faded(theme::curve, tick.isTall ? 0.9 : 0.5));
        }
    }

    void paintBands() {
        for (const auto& band : picture_.bands) {
            const QRectF area(QPointF(x(band.range.lower), plot_.top()), QPointF(x(band.range.upper), plot_.bottom()));
            if (band.isOn) {
                painter_.fillRect(onPixels(painter_, area), faded(flow, 0.09));
                vertical(area.left(), area.top(), area.bottom(), faded(flow, 0.35));
                vertical(area.right(), area.top(), area.bottom(), faded(flow, 0.35));
                continue;
            }
            QPen pen(faded(text3, 0.5), hairlineWidth(painter_), Qt::CustomDashLine, Qt::FlatCap);
            pen.setDashPattern({2, 3});
            painter_.setPen(pen);
            for (const double at : {area.left(), area.right()}) {
                const double middle = onPixels(painter_, QRectF(at, 0, 1, 1)).left() + hairlineWidth(painter_) / 2;
                painter_.drawLine(QLineF(middle, area.top(), middle, area.bottom()));
            }
        }
    }

    void paintGuide() {
        if (!picture_.guideSpeed || !picture_.geometry.window.contains(*picture_.guideSpeed)) return;
        QPen pen(flow, hairlineWidth(painter_), Qt::CustomDashLine, Qt::FlatCap);
        pen.setDashPattern({6, 4});
        painter_.setPen(pen);
        const double middle =
            onPixels(painter_, QRectF(0, y(*picture_.guideSpeed), 1, 1)).top() + hairlineWidth(painter_) / 2;
        painter_.drawLine(QLineF(plot_.left(), middle, plot_.right(), middle));
    }

    /// The piece of a line that has to be drawn.
    std::span<const QPointF> clipped(const std::vector<QPointF>& line) const {
        const auto byX = [](const QPointF& place, double at) { return place.x() < at; };
        auto first = std::lower_bound(line.begin(), line.end(), clip_.left() - curveWidth, byX);
        auto last = std::lower_bound(first, line.end(), clip_.right() + curveWidth, byX);
        if (first != line.begin()) --first;
        if (last != line.end()) ++last;
        return {first, last};
    }

    void stroke(const std::vector<QPointF>& line, QColor color, double width) {
        const std::span<const QPointF> part = clipped(line);
        // Qt draws pieces with flat and square ends twenty times as fast as with round ones. Square ones close the
        // gaps where the line bends, overlapping, which translucent ones must not.
        const bool mayOverlap = color.alpha() == 255;
        QList<QLineF> flat;
        QList<QLineF> square;
        flat.reserve(static_cast<qsizetype>(part.size()));
        for (std::size_t i = 1; i < part.size(); ++i) {
            const bool bends = (i > 1 && isBend(part[i - 2], part[i - 1], part[i])) ||
                               (i + 1 < part.size() && isBend(part[i - 1], part[i], part[i + 1]));
            (mayOverlap && bends ? square : flat).append(QLineF(part[i - 1], part[i]));
        }
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap));
        painter_.drawLines(flat);
        painter_.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap));
        painter_.drawLines(square);
        painter_.restore();
    }

    /// Dots at equal distances along the line, also where it is steep, but where the edited one will hide them.
    void dot(const std::vector<QPointF>& line, QColor color, double width) {
        QList<QLineF> dots;
        double left = 0; // until the next dot, pixels
        auto cover = picture_.edited.begin();
        const auto isCovered = [&](QPointF place) {
            while (cover != picture_.edited.end() && cover->x() < place.x())
                ++cover;
            return cover != picture_.edited.end() && *cover == place;
        };
        bool wasCovered = false;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const bool beganCovered = std::exchange(wasCovered, isCovered(line[i]));
            if (i == 0) continue;
            const QLineF piece(line[i - 1], line[i]);
            const double length = piece.length();
            double at = left;
            if (beganCovered && wasCovered) at += std::max(0.0, std::ceil((length - at) / dotDistance)) * dotDistance;
            for (; at < length; at += dotDistance)
                dots.append(QLineF(piece.pointAt(at / length), piece.pointAt((at + width) / length)));
            left = at - length;
        }
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap));
        painter_.drawLines(dots);
        painter_.restore();
    }

    void fill(const std::vector<QPointF>& line) {
        const std::span<const QPointF> part = clipped(line);
        if (part.empty()) return;
        const QTransform device = painter_.deviceTransform();
        const QRect area = device.mapRect(plot_ & clip_).toAlignedRect();
        // Qt mixes a translucent color in row by row, which in columns of one pixel costs ten times as much.
        QImage layer(area.size(), QImage::Format_ARGB32_Premultiplied);
        if (layer.isNull()) return;
        layer.fill(Qt::transparent);
        layer.setDevicePixelRatio(device.m11());
        const auto width = static_cast<std::size_t>(area.width());
        const std::span<QRgb> pixels(reinterpret_cast<QRgb*>(layer.bits()),
                                     width * static_cast<std::size_t>(area.height()));
        const QRgb color = qPremultiply(faded(picture_.axis.strokeColor, 0.09).rgba());
        const auto pixelOf = [&](QPointF place) {
            const QPoint pixel = device.map(place).toPoint() - area.topLeft();
            return QPoint(std::clamp(pixel.x(), 0, area.width()), std::clamp(pixel.y(), 0, area.height()));
        };
        const double base = y(picture_.axis.emphasizedGridValue);
        for (std::size_t i = 1; i < part.size(); ++i) {
            const double middle = (part[i - 1].y() + part[i].y()) / 2;
            const QPoint from = pixelOf({part[i - 1].x(), std::min(middle, base)});
            const QPoint to = pixelOf({part[i].x(), std::max(middle, base)});
            for (int row = from.y(); row < to.y(); ++row) {
                const auto columns = pixels.subspan(static_cast<std::size_t>(row) * width, width);
                std::fill(columns.begin() + from.x(), columns.begin() + to.x(), color);
            }
        }
        painter_.drawImage(device.inverted().map(QPointF(area.topLeft())), layer);
    }

    void paintCurves() {
        const QColor color = picture_.axis.strokeColor;
        const bool showsSeen = !picture_.seen.empty() && !picture_.drag;
        fill(showsSeen ? picture_.seen : picture_.edited);
        if (picture_.drag) dot(picture_.drag->curveBefore, faded(color, 0.38), 1.5);
        stroke(picture_.edited, showsSeen ? faded(color, 0.6) : color, showsSeen ? editedWidth : curveWidth);
        if (showsSeen) stroke(picture_.seen, color, curveWidth);
    }

    void paintOutside() {
        const auto dim = [&](double from, double to) {
            if (to > from)
                painter_.fillRect(onPixels(painter_, QRectF(QPointF(from, plot_.top()), QPointF(to, plot_.bottom()))),
                                  faded(well, 0.6));
        };
        dim(plot_.left(), x(picture_.trim.lower));
        dim(x(picture_.trim.upper), plot_.right());
    }

    void paintTrimLines() {
        const double tolerance = KeyframeRules::boundaryMatchTolerance;
        const TimeAxis& time = picture_.geometry.time;
        const auto line = [&](double seconds) {
            if (time.shows(seconds)) vertical(x(seconds), rect_.top(), rect_.bottom(), faded(theme::trim, 0.7));
        };
        if (picture_.trim.lower > tolerance) line(picture_.trim.lower);
        if (picture_.trim.upper < time.duration - tolerance) line(picture_.trim.upper);
    }

    void paintDrag() {
        if (!picture_.drag) return;
        if (picture_.drag->blockedAt) vertical(x(*picture_.drag->blockedAt), plot_.top(), plot_.bottom(), text3);
        if (picture_.drag->snappedTo) horizontal(y(*picture_.drag->snappedTo), picture_.axis.strokeColor);
    }

    void paintAxisLabels() {
        const auto& snapped = picture_.drag ? picture_.drag->snappedTo : std::optional<double>();
        const double gap = picture_.axis.isLogScale ? labelBeforePlot : wordBeforePlot;
        std::vector<double> labelled = labelledGridValues(picture_.axis, picture_.geometry);
        for (const double value : labelled) {
            const bool isSnapped = snapped == value;
            const QRectF box(0, y(value) - 8, plot_.left() - gap, 16);
            const QColor ink = isSnapped                                    ? picture_.axis.strokeColor
                               : value == picture_.axis.emphasizedGridValue ? theme::text
                                                                            : text2;
            drawLine(painter_, box, Qt::AlignRight, isSnapped ? Type::smallBold : Type::small, ink,
                     picture_.axis.format(value));
        }
        if (picture_.guideSpeed && picture_.geometry.window.contains(*picture_.guideSpeed))
            drawLine(painter_,
                     QRectF(plot_.right() + guideGap, y(*picture_.guideSpeed) - 8, rect_.right() - plot_.right(), 16),
                     Qt::AlignLeft, Type::small, flow, picture_.axis.format(*picture_.guideSpeed));
    }

    bool isInView(const SpeedKeyframe& point) const {
        constexpr double markRadius = 12;
        const double at = x(point.time);
        return picture_.geometry.time.shows(point.time) && at >= clip_.left() - markRadius &&
               at <= clip_.right() + markRadius;
    }

    void paintPoints() {
        PointMarks marks(painter_, picture_.axis.strokeColor);
        const double duration = picture_.geometry.time.duration;
        if (picture_.drag)
            for (const SpeedKeyframe& point : picture_.drag->before)
                if (picture_.drag->moved.contains(point.id) && isInView(point))
                    marks.draw(picture_.geometry.placeOf(point), PointMark::former);
        const auto draw = [&](const SpeedKeyframe& point, PointMark mark) {
            marks.draw(picture_.geometry.placeOf(point), mark);
        };
        std::vector<QPoint> drawn; // in the last column of pixels
        const auto isCovered = [&](const SpeedKeyframe& point) {
            const QPoint pixel = painter_.deviceTransform().map(picture_.geometry.placeOf(point)).toPoint();
            if (!drawn.empty() && drawn.front().x() != pixel.x()) drawn.clear();
            if (std::find(drawn.begin(), drawn.end(), pixel) != drawn.end()) return true;
            drawn.push_back(pixel);
            return false;
        };
        const auto markOf = [&](const SpeedKeyframe& point, bool isSelected) -> std::optional<PointMark> {
            const bool isEdge = point.role != SpeedKeyframeRole::curve;
            if (isSelected) return isEdge ? PointMark::selectedEdge : PointMark::selected;
            if (isEdge) return PointMark::edge;
            if (picture_.hovered == point.id) return PointMark::hovered;
            return isCovered(point) ? std::nullopt : std::optional(PointMark::plain);
        };
        const auto drawPlayed = [&](const SpeedKeyframe& point, bool isSelected) {
            const bool isGrabbed = picture_.drag && picture_.drag->grabbed == point.id;
            if (picture_.keyboardPoint == point.id) draw(point, PointMark::keyboardRing);
            if (isGrabbed || picture_.hovered == point.id)
                draw(point, isGrabbed ? PointMark::dragHalo : PointMark::hoverHalo);
            if (const auto mark = markOf(point, isSelected)) draw(point, *mark);
        };
        // The selected ones last: they win where points overlap.
        for (const bool isSelected : {false, true})
            for (const SpeedKeyframe& point : picture_.points) {
                if (!isInView(point) || picture_.selected.contains(point.id) != isSelected) continue;
                if (isPlayed(point, picture_.trim, duration))
                    drawPlayed(point, isSelected);
                else
                    draw(point, PointMark::outside);
            }
    }

    void paintLabels() {
        // Of the points out of sight the nearest ones count too: the curve comes from there.
        const double duration = picture_.geometry.time.duration;
        const SpeedKeyframes played = playedPoints(picture_.points, picture_.trim, duration);
        const auto isShown = [&](const SpeedKeyframe& point) { return picture_.geometry.time.shows(point.time); };
        std::vector<LabelledPoint> points;
        std::vector<QString> words;
        for (std::size_t i = 0; i < played.size(); ++i) {
            const SpeedKeyframe& point = played[i];
            const bool hasBefore = i > 0;
            const bool hasAfter = i + 1 < played.size();
            const bool isNeighbor = (hasBefore && isShown(played[i - 1])) || (hasAfter && isShown(played[i + 1]));
            if (!isShown(point) && !isNeighbor) continue;
            const bool isSelected = picture_.selected.contains(point.id);
            const bool isLost = hasBefore && hasAfter && !isSelected &&
                                isCrowded(x(played[i - 1].time), x(point.time), x(played[i + 1].time));
            const bool isSilent =
                isLost || !isShown(point) || point.role != SpeedKeyframeRole::curve || isClipEdge(point);
            words.push_back(isSilent ? QString() : picture_.axis.format(point.speed));
            points.push_back({picture_.geometry.placeOf(point),
                              isSilent ? 0 : textWidth(isSelected ? Type::smallBold : Type::small, words.back()),
                              isSelected, isSilent});
        }
        for (const PointLabel& label : placedLabels(points, plot_.left(), plot_.bottom()))
            if (label.box.adjusted(-3, -3, 3, 3).intersects(clip_))
                drawPointLabel(painter_, label.baseline, words[label.point], points[label.point].isSelected);
    }

    /// At the neutral value where the clip begins or ends there is nothing to tell.
    bool isClipEdge(const SpeedKeyframe& point) const {
        const double duration = picture_.geometry.time.duration;
        const bool isAtEnd = point.time <= KeyframeRules::boundaryMatchTolerance ||
                             point.time >= duration - KeyframeRules::boundaryMatchTolerance;
        return isAtEnd && point.speed == picture_.axis.boundaryValue && !picture_.selected.contains(point.id);
    }

    void paintMarquee() {
        if (picture_.marquee.isNull()) return;
        const QRectF area = onPixels(painter_, picture_.marquee.normalized());
        painter_.fillRect(area, faded(theme::text, 0.08));
        for (const Side side : {Side::top, Side::bottom, Side::left, Side::right})
            drawHairline(painter_, area, side, faded(theme::text, 0.7));
    }

    QPainter& painter_;
    const CurveGraphPicture& picture_;
    QRectF plot_;
    QRectF rect_;
    QRectF clip_;
};

/// Of what lies between two pixels no more than can be seen: where it enters, its highest and lowest place, and where
/// it leaves.
std::vector<QPointF> thinned(const std::vector<QPointF>& line) {
    std::vector<QPointF> thin;
    thin.reserve(line.size());
    for (auto first = line.begin(); first != line.end();) {
        const double column = std::floor(first->x());
        const auto end = std::find_if(first, line.end(), [&](QPointF at) { return std::floor(at.x()) != column; });
        if (end - first <= 4) {
            thin.insert(thin.end(), first, end);
        } else {
            auto [highest, lowest] =
                std::minmax_element(first, end, [](QPointF a, QPointF b) { return a.y() < b.y(); });
            if (highest > lowest) std::swap(highest, lowest);
            thin.insert(thin.end(), {*first, *highest, *lowest, *(end - 1)});
        }
        first = end;
    }
    return thin;
}

} // namespace

std::vector<QPointF> curveLine(const std::function<double(double)>& value, const SpeedKeyframes& points,
                               const CurveGraphGeometry& geometry, SourceRange range) {
    const TimeAxis& time = geometry.time;
    const double from = std::max(range.lower, time.start);
    const double to = std::min(range.upper, time.end());
    if (to < from) return {};
    std::vector<double> times{from};
    const double step = 1 / time.pixelsPerSecond();
    // On whole pixels, so that columns keep their places while the curve changes.
    for (double x = std::ceil(time.xOf(from) + 1e-6); x < time.xOf(to); ++x)
        times.push_back(time.timeAt(x));
    times.push_back(to);
    for (const SpeedKeyframe& point : points)
        if (point.time > from && point.time < to) times.push_back(point.time);
    std::sort(times.begin(), times.end());
    std::vector<QPointF> line;
    line.reserve(times.size());
    for (const double at : times)
        if (line.empty() || at - time.timeAt(line.back().x()) > step * 1e-3)
            line.emplace_back(time.xOf(at), geometry.yOf(value(at)));
    return thinned(line);
}

void paintCurveGraph(QPainter& painter, const CurveGraphPicture& picture, const QRectF& rect, const QRectF& clip) {
    Painting(painter, picture, rect, clip).paint();
}

} // namespace flowtide
