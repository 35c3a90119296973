#include "ui/graph/timeline_pane.h"

#include "ui/controls/labels.h"
#include "ui/graph/clip_lane.h"
#include "ui/graph/coverage_bar.h"
#include "ui/graph/curve_graph.h"
#include "ui/graph/flow_lane.h"
#include "ui/graph/ruler.h"
#include "ui/graph/timeline_head.h"
#include "ui/graph/timeline_layout.h"
#include "ui/graph/timeline_overlay.h"
#include "ui/graph/zoom_lane_view.h"
#include "ui/key_names.h"
#include "ui/theme.h"

#include <QNativeGestureEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

namespace flowtide {

namespace {

constexpr double zoomPerNotch = 1.2;
constexpr double notch = 120;         ///< angle units of a wheel's step
constexpr double pixelsPerNotch = 60; ///< that a wheel's step pans
constexpr double keyPan = 0.25;       ///< of what is visible
constexpr int codesTop = 3;           ///< of the playhead, within the ruler

} // namespace

TimelinePane::TimelinePane(SessionHost& host, QWidget* parent)
    : TimelinePane({host.model(), host.points(), host.scheduler(), &host.pictures(),
                    [&host] { return host.settings().smoothMotionFrameRate(); }},
                   parent) {}

TimelinePane::TimelinePane(const TimelineServices& services, QWidget* parent)
    : QWidget(parent)
    , context_(services) {
    head_ = new TimelineHead(context_, this);
    ruler_ = new Ruler(context_, this);
    graph_ = new CurveGraph(context_, this);
    flow_ = new FlowLane(context_, this);
    coverage_ = new CoverageBar(context_, this);
    clip_ = new ClipLane(context_, this);
    zoom_ = new ZoomLaneView(context_, this);
    hint_ = new LineLabel(theme::Type::small, theme::text2, {}, this);
    hint_->setElideMode(Qt::ElideRight);
    overlay_ = new TimelineOverlay(context_, this);
    overlay_->setCodesTop(codesTop);
    connect(graph_, &CurveGraph::curveHeightChanged, overlay_, [this](double y) {
        const double inOverlay = y + graph_->y() - overlay_->y();
        overlay_->setCurveHeight(y < 0 ? std::nullopt : std::optional(inOverlay));
    });
    connect(&context_, &TimelineContext::hintChanged, this, &TimelinePane::showHint);
    connect(&context_, &TimelineContext::labelsChanged, this, &TimelinePane::showHint);
    changes_ =
        context_.model().subscribe(properties({Property::editorMode}), [this](const PropertySet&) { showCurve(); });
    setMinimumHeight(TimelineLayout::lowestHeight(height()));
    showHint();
    showCurve();
}

TimelinePane::~TimelinePane() {
    // What is dragged is let go of in the context.
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

void TimelinePane::perform(Command command) {
    switch (command) {
    case Command::zoomIn:
        return context_.zoom(TimelineContext::Step::in);
    case Command::zoomOut:
        return context_.zoom(TimelineContext::Step::out);
    case Command::zoomToFit:
        return context_.zoom(TimelineContext::Step::fit);
    case Command::panLeft:
        return context_.pan(-keyPan * context_.axis().span, true);
    case Command::panRight:
        return context_.pan(keyPan * context_.axis().span, true);
    default:
        return graph_->perform(command);
    }
}

void TimelinePane::setPictureHint(const QString& hint) {
    pictureHint_ = hint;
    showHint();
}

QWidget* TimelinePane::graph() const {
    return graph_;
}

QWidget* TimelinePane::firstLane() const {
    if (context_.isFraming()) return coverage_;
    return flow_;
}

void TimelinePane::showHint() {
    const QString ofGraph = keyNames::local(tr("Drag empty graph space to scrub. Shift-drag to select points. Pinch or "
                                               "⌥-scroll to zoom the timeline; scroll sideways to pan."));
    const QString& ofPointer = pictureHint_.isEmpty() ? context_.hint() : pictureHint_;
    hint_->setText(ofPointer.isEmpty() ? ofGraph : ofPointer);
}

void TimelinePane::showCurve() {
    flow_->setVisible(!context_.isFraming());
    coverage_->setVisible(context_.isFraming());
}

void TimelinePane::place() {
    const TimelineLayout layout = TimelineLayout::of(size(), window()->height());
    head_->setGeometry(layout.head);
    ruler_->setGeometry(layout.ruler);
    graph_->setGeometry(layout.graph);
    flow_->setGeometry(layout.thin);
    coverage_->setGeometry(layout.thin.adjusted(0, -CoverageBar::overlap, 0, 0));
    clip_->showRows(layout.showsFilm, layout.showsSound);
    clip_->setGeometry(layout.clip);
    zoom_->setGeometry(layout.zoom.adjusted(0, -ZoomLaneView::overlap, 0, ZoomLaneView::overlap));
    hint_->setVisible(!layout.hint.isEmpty());
    const int margin = static_cast<int>(TimeAxis::margin);
    hint_->setGeometry(layout.hint.adjusted(margin, 0, -margin, 0));
    overlay_->setGeometry(QRect(layout.ruler.topLeft(), layout.zoom.bottomRight()));
    overlay_->raise();
    context_.setWidth(width());
    graph_->setPlot(layout.plotTop, layout.plotHeight);
}

void TimelinePane::fitWindow(int windowHeight) {
    setMinimumHeight(TimelineLayout::lowestHeight(windowHeight));
}

void TimelinePane::resizeEvent(QResizeEvent*) {
    place();
}

void TimelinePane::showEvent(QShowEvent*) {
    // The window's height is known to its filters before its panes are placed.
    window()->installEventFilter(this);
    fitWindow(window()->height());
    place();
}

bool TimelinePane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window() && event->type() == QEvent::Resize)
        fitWindow(static_cast<QResizeEvent*>(event)->size().height());
    return QWidget::eventFilter(watched, event);
}

bool TimelinePane::event(QEvent* event) {
    if (event->type() == QEvent::NativeGesture) {
        const auto* gesture = static_cast<QNativeGestureEvent*>(event);
        if (gesture->gestureType() == Qt::ZoomNativeGesture) {
            context_.zoomAround(gesture->position().x(), std::exp(gesture->value()));
            return true;
        }
    }
    return QWidget::event(event);
}

void TimelinePane::wheelEvent(QWheelEvent* event) {
    // With Alt, Qt turns up and down into left and right.
    const QPoint angle = event->angleDelta();
    const QPoint pixels = event->pixelDelta();
    if (event->modifiers() & (Qt::AltModifier | Qt::ControlModifier)) {
        const int turned = angle.y() != 0 ? angle.y() : angle.x();
        context_.zoomAround(event->position().x(), std::pow(zoomPerNotch, turned / notch));
        return event->accept();
    }
    const bool isShifted = event->modifiers() & Qt::ShiftModifier;
    const int turned = isShifted && angle.x() == 0 ? angle.y() : angle.x();
    const int moved = isShifted && pixels.x() == 0 ? pixels.y() : pixels.x();
    const double distance = moved != 0 ? moved : turned / notch * pixelsPerNotch;
    if (distance == 0) return event->ignore();
    context_.pan(-distance / context_.axis().pixelsPerSecond(), false);
    event->accept();
}

void TimelinePane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
}

} // namespace flowtide
