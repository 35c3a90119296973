#include "ui/graph/curve_graph_input.h"

#include "ui/value_text.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr int edgePanMilliseconds = 16;
constexpr double airAbove = 12; ///< pixels over the plot that a drag's label may use

QString signedSeconds(double seconds) {
    return QCoreApplication::translate("CurveGraph", "%1%2 s")
        .arg(seconds < -0.0005 ? QStringLiteral("−") : QStringLiteral("+"))
        .arg(std::abs(seconds), 0, 'f', 3);
}

} // namespace

CurveGraphInput::CurveGraphInput(TimelineContext& context, Surface surface)
    : context_(context)
    , surface_(std::move(surface)) {
    edgePan_.setInterval(edgePanMilliseconds);
    QObject::connect(&edgePan_, &QTimer::timeout, &edgePan_, [this] { panAtEdge(); });
}

const SpeedKeyframes& CurveGraphInput::points() const {
    const FlowtideViewModel& model = context_.model();
    return context_.isFraming() ? model.framing().centerKeyframes() : model.curve().keyframes();
}

void CurveGraphInput::replace(SpeedKeyframes points) {
    if (context_.isFraming())
        context_.model().replaceCenterKeyframes(std::move(points));
    else
        context_.model().replaceKeyframes(std::move(points));
}

double CurveGraphInput::valueAt(double seconds) const {
    const FlowtideViewModel& model = context_.model();
    return context_.isFraming() ? model.framing().liveCropTravel(seconds) : model.curve().speedAt(seconds);
}

std::optional<Uuid> CurveGraphInput::pointAt(QPointF place) const {
    return pointUnder(place, playedPoints(points(), context_.trim(), context_.duration()), surface_.geometry(),
                      context_.points().ids());
}

GraphPlace CurveGraphInput::placeAt(QPointF place) const {
    if (pointAt(place)) return GraphPlace::point;
    const TimeAxis& time = context_.axis();
    const bool isInPlot = place.x() >= time.left && place.x() <= time.right();
    return isInPlot && isOnCurve(place, surface_.line()) ? GraphPlace::curve : GraphPlace::ground;
}

double CurveGraphInput::snappedValueAt(double y, bool bypassesSnapping) const {
    const CurveGraphGeometry geometry = surface_.geometry();
    const auto scale = CurveDragScale::of(axis(), geometry.window, geometry.height);
    return snappedSpeed(geometry.heightAt(y), scale, bypassesSnapping).value;
}

std::optional<Uuid> CurveGraphInput::addPoint(double seconds, double value) {
    if (const auto added = curvePointEdits::withPoint(points(), seconds, value, span())) {
        const Uuid id = *added->ids.begin();
        replace(added->points);
        context_.points().select({id});
        return id;
    }
    const SpeedKeyframe* near = curvePointEdits::pointNear(points(), seconds, span());
    if (near) context_.points().select({near->id});
    return {};
}

void CurveGraphInput::press(QPointF place, Qt::KeyboardModifiers modifiers) {
    finish();
    if (!context_.model().clip()) return;
    pressed_ = last_ = place;
    pressedSeconds_ = context_.axis().timeAt(place.x());
    lastModifiers_ = modifiers;
    isDrag_ = false;
    selectedBefore_ = context_.points().ids();
    playheadBefore_ = context_.model().timeline().scrubPosition();
    guard_.begin();
    pressedPoint_ = pointAt(place);
    const bool isShifted = modifiers & Qt::ShiftModifier;
    if (isShifted) {
        target_ = GraphDragTarget::marquee;
        return;
    }
    if (pressedPoint_) {
        if (!context_.points().contains(*pressedPoint_)) context_.points().select({*pressedPoint_});
        target_ = GraphDragTarget::points;
        return takePoints(*pressedPoint_, place);
    }
    const double seconds = context_.timeInView(place.x());
    const bool isAlternate = modifiers & Qt::AltModifier && surface_.geometry().plot().contains(place);
    if (isAlternate || placeAt(place) == GraphPlace::curve) {
        const double value =
            isAlternate ? snappedValueAt(place.y(), modifiers & Qt::ControlModifier) : valueAt(seconds);
        context_.model().beginCurveEdit();
        isEdit_ = true;
        const auto created = addPoint(seconds, value);
        if (created) {
            target_ = GraphDragTarget::createdPoint;
            return takePoints(*created, place);
        }
        // No room for another point: nothing is made, and nothing scrubs where the user wanted a point.
        return finish();
    }
    target_ = GraphDragTarget::scrub;
    context_.scrubTo(seconds);
}

void CurveGraphInput::takePoints(const Uuid& grabbed, QPointF place) {
    const CurveGraphGeometry geometry = surface_.geometry();
    drag_.emplace(points(), context_.points().ids(), grabbed, context_.trim(), context_.duration(), axis());
    scale_ = CurveDragScale::of(axis(), geometry.window, geometry.height);
    grip_ = place - geometry.placeOf(drag_->grabbed());
}

void CurveGraphInput::beginDrag() {
    isDrag_ = true;
    if (!drag_) return;
    if (!isEdit_) context_.model().beginCurveEdit();
    isEdit_ = true;
    if (!context_.isFraming()) context_.beginLengthChange();
}

void CurveGraphInput::move(QPointF place, Qt::KeyboardModifiers modifiers) {
    if (target_ == GraphDragTarget::none) return;
    last_ = place;
    lastModifiers_ = modifiers;
    if (!isDrag_) {
        const QPointF way = place - pressed_;
        if (std::hypot(way.x(), way.y()) < graphSettings::clickMovementTolerance) return;
        beginDrag();
    }
    dragTo(place, modifiers);
    const bool pans = context_.axis().isMagnified() && edgePanSpeed(place.x(), context_.axis()) != 0;
    if (pans && !edgePan_.isActive()) edgePan_.start();
    if (!pans) edgePan_.stop();
}

void CurveGraphInput::panAtEdge() {
    const TimeAxis& time = context_.axis();
    const double speed = edgePanSpeed(last_.x(), time);
    if (speed == 0 || target_ == GraphDragTarget::none) return edgePan_.stop();
    context_.pan(speed * time.span * edgePanMilliseconds / 1000, false);
    dragTo(last_, lastModifiers_);
}

void CurveGraphInput::dragTo(QPointF place, Qt::KeyboardModifiers modifiers) {
    switch (target_) {
    case GraphDragTarget::none:
        return;
    case GraphDragTarget::scrub:
        return context_.scrubTo(context_.timeInView(place.x()));
    case GraphDragTarget::marquee: {
        // Its first corner moves with the axis.
        marquee_ = QRectF({context_.axis().xOf(pressedSeconds_), pressed_.y()}, place).normalized();
        const CurveGraphGeometry geometry = surface_.geometry();
        PointSelection::Ids ids =
            pointsWithin(marquee_, playedPoints(points(), context_.trim(), context_.duration()), geometry);
        ids.insert(selectedBefore_.begin(), selectedBefore_.end());
        context_.points().select(std::move(ids));
        return surface_.changed();
    }
    case GraphDragTarget::points:
    case GraphDragTarget::createdPoint:
        return dragPoints(place, modifiers);
    }
}

void CurveGraphInput::dragPoints(QPointF place, Qt::KeyboardModifiers modifiers) {
    CurveGraphGeometry geometry = surface_.geometry();
    geometry.window = scale_->window;
    const QPointF wanted = place - grip_;
    const double shift = context_.axis().timeAt(wanted.x()) - drag_->grabbed().time;
    const SnappedValue snapped = snappedSpeed(geometry.heightAt(wanted.y()), *scale_, modifiers & Qt::ControlModifier);
    CurveDrag::Result result = drag_->moved(shift, snapped.value);
    const auto grabbed = std::find_if(result.points.begin(), result.points.end(),
                                      [&](const SpeedKeyframe& point) { return point.id == drag_->grabbed().id; });
    // A group that is held back by a limit has not reached the line.
    const bool isReached = grabbed != result.points.end() && grabbed->speed == snapped.value;
    snappedTo_ = snapped.isSnapped && isReached ? std::optional(snapped.value) : std::nullopt;
    blockedAt_ = result.blockedAt;
    replace(result.points);
    showLabel(result);
    surface_.changed();
}

void CurveGraphInput::showLabel(const CurveDrag::Result& result) {
    const auto grabbed = std::find_if(result.points.begin(), result.points.end(),
                                      [&](const SpeedKeyframe& point) { return point.id == drag_->grabbed().id; });
    if (grabbed == result.points.end()) return context_.setDragLabel({});
    CurveGraphGeometry geometry = surface_.geometry();
    const std::array values{grabbed->speed};
    geometry.window = widenedTo(geometry.window, values);
    const CurveEditorAxis shown = axis();
    const auto count = static_cast<int>(drag_->movedIds().size());
    const QString points = count == 1 ? QCoreApplication::translate("CurveGraph", "1 point")
                                      : QCoreApplication::translate("CurveGraph", "%1 points").arg(count);
    DragLabel label;
    label.place = geometry.placeOf(*grabbed) + surface_.origin();
    label.bounds = geometry.plot().adjusted(0, -airAbove, 0, 0).translated(surface_.origin());
    label.value = shown.format(grabbed->speed);
    label.color = shown.strokeColor;
    label.time = valueText::timeCode(grabbed->time);
    label.difference = signedSeconds(grabbed->time - drag_->grabbed().time);
    label.widestLine = points + QStringLiteral(" · ") + shown.snapHint;
    label.line = snappedTo_ ? label.widestLine : points;
    context_.setDragLabel(std::move(label));
}

void CurveGraphInput::release(QPointF, Qt::KeyboardModifiers modifiers) {
    if (!isDrag_) click(modifiers);
    finish();
}

void CurveGraphInput::click(Qt::KeyboardModifiers) {
    PointSelection& selection = context_.points();
    switch (target_) {
    case GraphDragTarget::marquee: {
        if (!pressedPoint_) return;
        PointSelection::Ids ids = selection.ids();
        if (!ids.erase(*pressedPoint_)) ids.insert(*pressedPoint_);
        return selection.select(std::move(ids));
    }
    case GraphDragTarget::points:
        return selection.select({*pressedPoint_});
    case GraphDragTarget::scrub:
        return selection.clear();
    case GraphDragTarget::none:
    case GraphDragTarget::createdPoint:
        return;
    }
}

void CurveGraphInput::cancel() {
    if (std::exchange(isEdit_, false)) context_.model().cancelCurveEdit();
    if (target_ == GraphDragTarget::scrub) context_.model().scrub(playheadBefore_);
    context_.points().select(selectedBefore_);
    finish();
}

void CurveGraphInput::finish() {
    guard_.end();
    edgePan_.stop();
    const bool wasActive = target_ != GraphDragTarget::none;
    if (std::exchange(isEdit_, false)) context_.model().endCurveEdit();
    target_ = GraphDragTarget::none;
    isDrag_ = false;
    drag_.reset();
    scale_.reset();
    snappedTo_.reset();
    blockedAt_.reset();
    marquee_ = {};
    context_.setDragLabel({});
    context_.endLengthChange();
    if (wasActive) surface_.changed();
}

} // namespace flowtide
