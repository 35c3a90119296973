#include "ui/graph/curve_graph.h"

#include "core/curve_evaluator.h"
#include "core/keyframe_rules.h"
#include "ui/accessible_role.h"
#include "ui/graph/curve_graph_menu.h"
#include "ui/graph/graph_cursors.h"
#include "ui/graph/item_steps.h"
#include "ui/keys_owner.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr double nudgesInGridStep = 20;
constexpr int tenfold = 10;
} // namespace

CurveGraph::CurveGraph(TimelineContext& context, QWidget* parent)
    : QWidget(parent)
    , context_(context)
    , input_(context,
             {[this] { return geometry(); }, [this]() -> const std::vector<QPointF>& { return picture().edited; },
              [this] { return QPointF(pos()); }, [this] { curveChanged(); }})
    , isFraming_(context.isFraming())
    , window_(input_.axis().usualWindow())
    , windowFrom_(window_)
    , windowTo_(window_)
    , settle_(
          motion::settleMilliseconds,
          [this] {
              window_ = windowBetween(windowFrom_, windowTo_, settle_.value(), input_.axis().isLogScale);
              curveChanged();
          },
          1)
    , items_(*this, context, input_, [this] { return geometry(); }) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setKeysOwner(*this, KeysOwner::editor);
    connect(&context, &TimelineContext::axisChanged, this, &CurveGraph::axisMoved);
    connect(&context.points(), &PointSelection::changed, this, [this] {
        curveChanged();
        items_.tree().changed();
    });
    changes_ = context.model().subscribe(
        properties({Property::clip, Property::keyframes, Property::curveSmoothing, Property::trimRange,
                    Property::centerKeyframes, Property::centerSmoothing, Property::editorMode,
                    Property::opticalFlowRanges, Property::originalFrameSpans, Property::frameInterpolation,
                    Property::smoothMotionFrameRate, Property::scrubPosition, Property::isCropDragActive}),
        [this](const PropertySet& changed) { refresh(changed); });
    setAccessibleName(tr("Speed curve"));
}

void CurveGraph::setPlot(int top, int height) {
    plotTop_ = top;
    plotHeight_ = height;
    curveChanged();
}

CurveGraphGeometry CurveGraph::geometry() const {
    return {context_.axis(), window_, input_.axis().isLogScale, static_cast<double>(plotTop_),
            static_cast<double>(plotHeight_)};
}

void CurveGraph::catchUp() {
    if (context_.isFraming() == isFraming_) return;
    isFraming_ = !isFraming_;
    endNudges();
    input_.finish();
    followValues(false);
    isStale_ = true;
}

void CurveGraph::refresh(const PropertySet& changed) {
    catchUp();
    const auto has = [&](Property property) { return changed.test(static_cast<std::size_t>(property)); };
    if (has(Property::clip)) input_.finish();
    PropertySet others = changed;
    others.reset(static_cast<std::size_t>(Property::scrubPosition));
    if (others.any()) {
        forgetGonePoints();
        isStale_ = true;
        followValues(!has(Property::clip) && !has(Property::editorMode));
        curveChanged();
        setSpokenName(*this, context_.isFraming() ? tr("Framing curve") : tr("Speed curve"));
        items_.tree().changed();
    } else {
        updateCurveHeight();
    }
}

void CurveGraph::forgetGonePoints() {
    if (input_.target() != GraphDragTarget::none) return;
    PointSelection::Ids left;
    for (const SpeedKeyframe& point : input_.points())
        if (context_.points().contains(point.id)) left.insert(point.id);
    context_.points().select(std::move(left));
}

void CurveGraph::axisMoved() {
    catchUp();
    followValues(true);
    curveChanged();
}

ValueRange CurveGraph::wantedWindow() const {
    const TimeAxis& time = context_.axis();
    std::vector<double> values;
    if (context_.duration() > 0) {
        for (const SpeedKeyframe& point : input_.points())
            if (time.shows(point.time) && isPlayed(point, context_.trim(), context_.duration()))
                values.push_back(point.speed);
        const SourceRange trim = context_.trim();
        for (const double edge : {std::max(time.start, trim.lower), std::min(time.end(), trim.upper)})
            values.push_back(input_.valueAt(edge));
    }
    if (!input_.isMovingPoints()) return windowShowing(values, input_.axis());
    return widenedTo(input_.windowAtStart(), values);
}

void CurveGraph::followValues(bool animated) {
    const ValueRange wanted = wantedWindow();
    const bool follows = input_.isMovingPoints();
    if (wanted == windowTo_ && !follows) return;
    windowFrom_ = animated && !follows ? window_ : wanted;
    windowTo_ = wanted;
    if (animated && !follows) {
        settle_.jumpTo(0);
        settle_.moveTo(1);
    } else {
        settle_.jumpTo(1);
    }
}

void CurveGraph::curveChanged() {
    catchUp();
    isStale_ = true;
    if (!input_.isMovingPoints()) {
        picture_.drag.reset();
        // The window goes back to what the points ask for.
        if (windowTo_ != wantedWindow()) followValues(true);
    }
    updateCurveHeight();
    update();
}

void CurveGraph::updateCurveHeight() {
    const FlowtideViewModel& model = context_.model();
    if (!model.clip() || !context_.axis().shows(model.playheadSeconds())) {
        emit curveHeightChanged(-1);
        return;
    }
    const double playhead = model.playheadSeconds();
    const bool isGlided = context_.isFraming() && !input_.isMovingPoints();
    const double value = isGlided ? model.framing().glidedCropTravel(playhead) : input_.valueAt(playhead);
    emit curveHeightChanged(geometry().yOf(value));
}

double CurveGraph::guideSpeed() const {
    const auto& clip = context_.model().clip();
    return clip && clip->frameRate > 0 ? context_.services().smoothMotionFrameRate() / clip->frameRate : 0;
}

const CurveGraphPicture& CurveGraph::picture() {
    catchUp();
    if (!std::exchange(isStale_, false)) return picture_;
    const CurveGraphPicture former = std::exchange(picture_, {});
    picture_.axis = input_.axis();
    picture_.geometry = geometry();
    picture_.trim = context_.trim();
    picture_.selected = context_.points().ids();
    if (!context_.model().clip()) return picture_;
    picture_.points = input_.points();
    buildCurves(former);
    if (!context_.isFraming()) buildMarks();
    return picture_;
}

void CurveGraph::buildCurves(const CurveGraphPicture& former) {
    const FlowtideViewModel& model = context_.model();
    const CurveDomain domain = context_.isFraming() ? model.framing().domain() : model.curve().domain();
    const auto line = [&](const SpeedKeyframes& points) {
        const SpeedKeyframes played = playedCurve(points, picture_.trim, domain);
        CurveEvaluator value(played, domain.smoothing, domain.limits);
        return curveLine([&](double seconds) { return value(seconds); }, played, picture_.geometry, picture_.trim);
    };
    picture_.edited = line(picture_.points);
    const bool glides = context_.isFraming() && model.framing().centerSmoothing() > 0;
    if (glides && !input_.isMovingPoints() && !model.framing().isCropDragActive())
        picture_.seen = curveLine([&](double seconds) { return model.framing().glidedCropTravel(seconds); }, {},
                                  picture_.geometry, picture_.trim);
    if (!input_.isMovingPoints()) return;
    const CurveDrag& drag = *input_.drag();
    CurveGraphPicture::Drag shown;
    shown.curveBefore =
        former.drag && former.geometry == picture_.geometry ? former.drag->curveBefore : line(drag.startPoints());
    shown.moved = drag.movedIds();
    shown.grabbed = drag.grabbed().id;
    if (input_.target() == GraphDragTarget::points) shown.before = drag.startPoints();
    shown.snappedTo = input_.snappedTo();
    shown.blockedAt = input_.blockedAt();
    picture_.drag = std::move(shown);
}

void CurveGraph::buildMarks() {
    const FlowtideViewModel& model = context_.model();
    const FlowScope& flow = model.flow();
    const bool usesFlow = flow.frameInterpolation() == FrameInterpolation::opticalFlow;
    for (const OpticalFlowRange& range : flow.opticalFlowRanges())
        picture_.bands.push_back({{range.start, range.end}, usesFlow && flow.isSwitchedOn(range)});
    if (const double speed = guideSpeed(); speed > 0) picture_.guideSpeed = speed;

    const TimeMap& map = model.curve().timeMap();
    const TimeAxis& time = context_.axis();
    const double from = map.outputTime({std::max(time.start, picture_.trim.lower)}).value;
    const double to = map.outputTime({std::min(time.end(), picture_.trim.upper)}).value;
    double slowest = 0; // the curve at its lowest in view, as the highest place on the screen
    for (const QPointF& place : picture_.edited)
        slowest = std::max(slowest, place.y());
    if (picture_.edited.empty() || to <= from) return;
    const CurveGraphGeometry& shown = picture_.geometry;
    const double speed = valueAtHeight(shown.heightAt(slowest), shown.window, shown.isLogScale);
    const double step = outputTickStep(time.pixelsPerSecond() * speed);
    std::size_t cursor = 0;
    for (auto i = static_cast<qint64>(std::ceil(from / step - 1e-9)); static_cast<double>(i) * step <= to; ++i)
        picture_.ticks.push_back(
            {time.xOf(map.sourceTime(OutputSeconds{static_cast<double>(i) * step}, cursor).value), i % 4 == 0});
}

void CurveGraph::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    picture();
    picture_.marquee = input_.marquee();
    const bool hasKeyboard = hasFocus() && showsKeyboard_;
    picture_.keyboardPoint = hasKeyboard ? context_.points().single() : std::nullopt;
    paintCurveGraph(painter, picture_, rect(), event->rect());
}

void CurveGraph::mousePressEvent(QMouseEvent* event) {
    catchUp();
    showsKeyboard_ = false;
    if (event->button() != Qt::LeftButton) return;
    endNudges();
    input_.press(event->position(), event->modifiers());
    showPointer(event->position(), event->modifiers());
}

void CurveGraph::mouseMoveEvent(QMouseEvent* event) {
    catchUp();
    if (event->buttons() & Qt::LeftButton) input_.move(event->position(), event->modifiers());
    showPointer(event->position(), event->modifiers());
}

void CurveGraph::mouseReleaseEvent(QMouseEvent* event) {
    catchUp();
    if (event->button() != Qt::LeftButton) return;
    input_.release(event->position(), event->modifiers());
    showPointer(event->position(), event->modifiers());
}

void CurveGraph::leaveEvent(QEvent*) {
    if (!picture_.hovered) return;
    picture_.hovered.reset();
    update();
}

void CurveGraph::showPointer(QPointF place, Qt::KeyboardModifiers modifiers) {
    const bool isHeld = input_.holdsPoints();
    const std::optional<Uuid> hovered = isHeld ? std::nullopt : input_.pointAt(place);
    picture();
    if (hovered != picture_.hovered) {
        picture_.hovered = hovered;
        update();
    }
    setPointer(pointerFor(place, modifiers));
}

CurveGraph::Pointer CurveGraph::pointerFor(QPointF place, Qt::KeyboardModifiers modifiers) const {
    if (input_.holdsPoints()) return Pointer::closedHand;
    if (input_.target() == GraphDragTarget::scrub) return Pointer::arrow;
    if (input_.target() == GraphDragTarget::marquee) return Pointer::cross;
    const bool isInPlot = picture_.geometry.plot().contains(place);
    if (modifiers & Qt::ShiftModifier && isInPlot) return Pointer::cross;
    if (picture_.hovered) return Pointer::openHand;
    const bool adds = isInPlot && (modifiers & Qt::AltModifier || input_.placeAt(place) == GraphPlace::curve);
    return adds ? Pointer::addPoint : Pointer::arrow;
}

void CurveGraph::setPointer(Pointer pointer) {
    if (pointer == std::exchange(pointer_, pointer)) return;
    switch (pointer) {
    case Pointer::arrow:
        return unsetCursor();
    case Pointer::openHand:
        return setCursor(Qt::OpenHandCursor);
    case Pointer::closedHand:
        return setCursor(Qt::ClosedHandCursor);
    case Pointer::cross:
        return setCursor(Qt::CrossCursor);
    case Pointer::addPoint:
        return setCursor(graphCursors::addPoint(devicePixelRatioF()));
    }
}

void CurveGraph::contextMenuEvent(QContextMenuEvent* event) {
    if (!context_.model().clip()) return;
    QPointF place = event->pos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const auto single = context_.points().single();
        for (const SpeedKeyframe& point : input_.points())
            if (point.id == single) place = geometry().placeOf(point);
    }
    openGraphMenu(*this, context_, input_, place, !copied_.empty() && copiedFraming_ == context_.isFraming(),
                  [this](Command command) { perform(command); });
}

void CurveGraph::perform(Command command) {
    if (!context_.model().clip()) return;
    PointSelection& selection = context_.points();
    const double playhead = context_.model().playheadSeconds();
    switch (command) {
    case Command::deletePoints:
        if (selection.ids().empty()) return;
        input_.finish();
        input_.replace(curvePointEdits::withoutPoints(input_.points(), selection.ids(), input_.axis()));
        return selection.clear();
    case Command::copyPoints:
        if (selection.ids().empty()) return;
        copied_ = curvePointEdits::copied(input_.points(), selection.ids());
        copiedFraming_ = context_.isFraming();
        return;
    case Command::pastePoints: {
        if (copied_.empty() || copiedFraming_ != context_.isFraming()) return;
        auto pasted = curvePointEdits::pasted(input_.points(), copied_, playhead, input_.span());
        input_.replace(std::move(pasted.points));
        return selection.select(std::move(pasted.ids));
    }
    case Command::selectAllPoints: {
        PointSelection::Ids ids;
        for (const SpeedKeyframe& point : playedPoints(input_.points(), context_.trim(), context_.duration()))
            ids.insert(point.id);
        return selection.select(std::move(ids));
    }
    case Command::insertPoint:
        input_.addPoint(playhead, input_.valueAt(playhead));
        return;
    default:
        return;
    }
}

bool CurveGraph::event(QEvent* event) {
    // Alt shows that a click would add a point, before the pointer moves.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Alt || key->key() == Qt::Key_Shift)
            showPointer(mapFromGlobal(QCursor::pos()), QGuiApplication::queryKeyboardModifiers());
    }
    return QWidget::event(event);
}

void CurveGraph::keyPressEvent(QKeyEvent* event) {
    catchUp();
    const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down || event->key() == Qt::Key_Left ||
                         event->key() == Qt::Key_Right;
    showsKeyboard_ = true;
    if (isArrow && event->modifiers() & Qt::AltModifier) {
        nudge(event->key(), event->modifiers() & Qt::ShiftModifier);
    } else if (const int step = itemStep(*event)) {
        const auto id = curvePointEdits::steppedSelection(input_.points(), context_.points().ids(),
                                                          context_.model().playheadSeconds(), step, input_.span());
        if (id) items_.pressItem(*id);
    } else {
        event->ignore();
    }
    update();
}

void CurveGraph::nudge(int key, bool isTenfold) {
    const PointSelection::Ids& ids = context_.points().ids();
    const auto& points = input_.points();
    const auto first = std::find_if(points.begin(), points.end(), [&](const SpeedKeyframe& point) {
        return ids.contains(point.id) && isPlayed(point, context_.trim(), context_.duration());
    });
    if (first == points.end() || !context_.model().clip()) return;
    if (!std::exchange(isNudging_, true)) {
        context_.model().beginCurveEdit();
        if (!context_.isFraming()) context_.beginLengthChange();
    }
    const CurveDrag drag(points, ids, first->id, context_.trim(), context_.duration(), input_.axis());
    const int count = isTenfold ? tenfold : 1;
    double shift = 0;
    double value = first->speed;
    if (key == Qt::Key_Left || key == Qt::Key_Right) {
        const TimeMap& map = context_.model().curve().timeMap();
        const double frames = (key == Qt::Key_Left ? -count : count) * context_.model().clip()->frameDuration.seconds();
        const double output = map.outputTime({first->time}).value;
        shift = map.sourceTime(OutputSeconds{output + frames}).value - first->time;
    } else {
        value = nudgedValue(first->speed, (key == Qt::Key_Down ? -count : count) / nudgesInGridStep, input_.axis());
    }
    input_.replace(drag.moved(shift, value).points);
}

void CurveGraph::endNudges() {
    if (!std::exchange(isNudging_, false)) return;
    context_.model().endCurveEdit();
    context_.endLengthChange();
}

void CurveGraph::keyReleaseEvent(QKeyEvent* event) {
    if (!event->isAutoRepeat()) endNudges();
    event->ignore();
}

void CurveGraph::focusInEvent(QFocusEvent* event) {
    showsKeyboard_ = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    items_.tree().focused();
    update();
}

void CurveGraph::focusOutEvent(QFocusEvent*) {
    endNudges();
    update();
}

} // namespace flowtide
