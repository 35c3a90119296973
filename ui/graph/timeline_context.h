// What the parts of the timeline share: the session, the time axis, and what floats over all of them.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/graph/time_axis.h"
#include "ui/motion.h"
#include "ui/picture_loader.h"
#include "ui/point_selection.h"

#include <QColor>
#include <QObject>
#include <QPointF>
#include <QString>
#include <functional>
#include <optional>

namespace flowtide {

/// What a timeline is made of from outside. All of it outlives the timeline.
struct TimelineServices {
    FlowtideViewModel& model;
    PointSelection& points;
    Scheduler& scheduler;
    PictureLoader* pictures; ///< null: the film strip stays empty
    std::function<double()> smoothMotionFrameRate;
};

/// What is said beside a point that is dragged.
struct DragLabel {
    QPointF place; ///< of the point, pixels of the timeline
    QRectF bounds; ///< of the plot, pixels of the timeline
    QString value;
    QColor color;
    QString time;
    QString difference;
    QString line; ///< below the others
    QString widestLine;
    friend bool operator==(const DragLabel&, const DragLabel&) = default;
};

/// The time over a trim handle that is dragged.
struct TrimLabel {
    QPointF place; ///< middle of its lower edge, pixels of the timeline
    QString text;
    friend bool operator==(const TrimLabel&, const TrimLabel&) = default;
};

class TimelineContext final : public QObject {
    Q_OBJECT

public:
    explicit TimelineContext(TimelineServices services);

    FlowtideViewModel& model() const { return services_.model; }
    PointSelection& points() const { return services_.points; }
    const TimelineServices& services() const { return services_; }
    bool isFraming() const { return model().timeline().editorMode() == CurveEditorMode::cropCenter; }
    SourceRange trim() const { return model().curve().trimRange(); }
    double duration() const { return model().curve().duration(); }

    /// The axis as it is shown; x counts from the timeline's left edge.
    const TimeAxis& axis() const { return axis_; }
    void setWidth(int pixels);
    enum class Step { in, out, fit };
    void zoom(Step step);
    void zoomAround(double x, double factor);
    void pan(double seconds, bool animated);
    /// Pans so far that a time is in the middle, unless it is in sight.
    void reveal(double seconds);
    /// While it is held the axis stays as it is, whatever the session says.
    void holdAxis(bool holds);

    /// The time of a place, within the clip.
    double timeAt(double x) const;
    /// The same, never beyond what is in view: a playhead out of sight is lost.
    double timeInView(double x) const;
    void scrubTo(double seconds);

    /// A drag that changes the output's length goes on; the head then shows by how much.
    void beginLengthChange();
    void endLengthChange();
    /// Output seconds before that drag; nothing when there is none.
    const std::optional<double>& lengthBefore() const { return lengthBefore_; }

    void setHint(const QString& hint); ///< about what the pointer is on; empty: nothing
    const QString& hint() const { return hint_; }

    void setDragLabel(std::optional<DragLabel> label);
    const std::optional<DragLabel>& dragLabel() const { return dragLabel_; }
    void setTrimLabel(std::optional<TrimLabel> label);
    const std::optional<TrimLabel>& trimLabel() const { return trimLabel_; }

signals:
    void axisChanged();
    void hintChanged();
    void lengthChangeChanged();
    void labelsChanged();

private:
    TimeAxis target() const;
    void follow();
    void show(const TimeAxis& axis);
    void setView(const TimeAxis& axis, bool animated);

    TimelineServices services_;
    TimeAxis axis_;
    TimeAxis from_;
    Fade move_{motion::timelineMilliseconds, [this] { follow(); }, 1};
    double width_ = 1;
    bool animatesNext_ = false;
    bool isHeld_ = false;
    std::optional<double> lengthBefore_;
    QString hint_;
    std::optional<DragLabel> dragLabel_;
    std::optional<TrimLabel> trimLabel_;
    Subscription changes_;
};

} // namespace flowtide
