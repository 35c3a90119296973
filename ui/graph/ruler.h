// The times above the graph.
#pragma once

#include "ui/graph/scrub_drag.h"
#include "ui/graph/timeline_context.h"

#include <QRectF>
#include <QWidget>

namespace flowtide {

/// The playhead's two time codes in the ruler.
struct PlayheadHead {
    QRectF source;
    QRectF output;
    QRectF both() const { return source | output; }

    /// `x`: of the playhead; `width`: of the ruler; `top`: of the codes; `isLong`: they have room for hours.
    static PlayheadHead of(double x, double width, double top, bool isLong);
    /// Whether a code needs that: the clip's, or that of the output, which may be longer.
    static bool isLong(const TimelineContext& context);
};

/// Pressing and dragging it scrubs.
class Ruler final : public QWidget {
    Q_OBJECT

public:
    Ruler(TimelineContext& context, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    TimelineContext& context_;
    ScrubDrag scrub_{context_};
    Subscription changes_;
};

} // namespace flowtide
