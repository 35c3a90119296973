// What the pointer does in the graph: scrub, select, and move points.
#pragma once

#include "ui/controls/drag_guard.h"
#include "ui/graph/curve_drag.h"
#include "ui/graph/curve_drag_scale.h"
#include "ui/graph/curve_point_edits.h"
#include "ui/graph/timeline_context.h"

#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

namespace flowtide {

/// What a drag moves.
enum class GraphDragTarget { none, scrub, marquee, points, createdPoint };

/// What the pointer is over.
enum class GraphPlace { ground, curve, point };

/// The gestures of the graph, from press to release. Each that edits is one step of history. Main thread only.
class CurveGraphInput {
public:
    /// What it needs of the graph that it belongs to.
    struct Surface {
        std::function<CurveGraphGeometry()> geometry;
        std::function<const std::vector<QPointF>&()> line; ///< the curve as it is drawn
        std::function<QPointF()> origin;                   ///< of the graph in the timeline
        std::function<void()> changed;                     ///< something that only the graph shows
    };

    CurveGraphInput(TimelineContext& context, Surface surface);

    CurveEditorAxis axis() const { return context_.isFraming() ? crop_ : speed_; }
    const SpeedKeyframes& points() const;
    curvePointEdits::Span span() const { return {context_.trim(), context_.duration()}; }
    void replace(SpeedKeyframes points);
    double valueAt(double seconds) const; ///< of the curve that is edited

    void press(QPointF place, Qt::KeyboardModifiers modifiers);
    void move(QPointF place, Qt::KeyboardModifiers modifiers);
    void release(QPointF place, Qt::KeyboardModifiers modifiers);
    /// Ends a gesture where it is.
    void finish();
    /// Ends it as if it had never begun.
    void cancel();

    GraphPlace placeAt(QPointF place) const;
    std::optional<Uuid> pointAt(QPointF place) const;
    /// A point at a place: at its value, or on the curve. Selects it, or the one that leaves no room for it.
    std::optional<Uuid> addPoint(double seconds, double value);
    double snappedValueAt(double y, bool bypassesSnapping) const;

    GraphDragTarget target() const { return target_; }
    bool holdsPoints() const { return target_ == GraphDragTarget::points || target_ == GraphDragTarget::createdPoint; }
    bool isMovingPoints() const { return drag_ && isDrag_; }
    const std::optional<CurveDrag>& drag() const { return drag_; }
    const ValueRange& windowAtStart() const { return scale_->window; } ///< while points are moved
    const std::optional<double>& snappedTo() const { return snappedTo_; }
    const std::optional<double>& blockedAt() const { return blockedAt_; }
    const QRectF& marquee() const { return marquee_; }

private:
    void takePoints(const Uuid& grabbed, QPointF place);
    void beginDrag();
    void dragTo(QPointF place, Qt::KeyboardModifiers modifiers);
    void dragPoints(QPointF place, Qt::KeyboardModifiers modifiers);
    void click(Qt::KeyboardModifiers modifiers);
    void showLabel(const CurveDrag::Result& result);
    void panAtEdge();

    TimelineContext& context_;
    Surface surface_;
    CurveEditorAxis speed_ = CurveEditorAxis::speed();
    CurveEditorAxis crop_ = CurveEditorAxis::cropCenter();

    GraphDragTarget target_ = GraphDragTarget::none;
    bool isDrag_ = false; ///< has moved so far that it is no click
    bool isEdit_ = false; ///< a gesture of the session is open
    QPointF pressed_;
    double pressedSeconds_ = 0; ///< of the source
    QPointF last_;
    QPointF grip_; ///< from the grabbed point to where it was grabbed
    Qt::KeyboardModifiers lastModifiers_;
    std::optional<Uuid> pressedPoint_;
    std::optional<CurveDrag> drag_;
    std::optional<CurveDragScale> scale_;
    std::optional<double> snappedTo_;
    std::optional<double> blockedAt_;
    PointSelection::Ids selectedBefore_; ///< a marquee adds to it
    double playheadBefore_ = 0;          ///< as a fraction of the clip
    DragGuard guard_{[this] { cancel(); }};
    QRectF marquee_;
    QTimer edgePan_;
};

} // namespace flowtide
