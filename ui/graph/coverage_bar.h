// Where the framing follows a tracked subject, and where the subject was lost.
#pragma once

#include "ui/graph/timeline_lane.h"

#include <vector>

namespace flowtide {

/// A place where the subject was lost.
struct CoverageFlag {
    double time = 0;          ///< source seconds: the end of the tracked stretch
    double lastFrameTime = 0; ///< source seconds: what to look at
    bool isAfter = true;      ///< of the stretch, or before it
    friend bool operator==(const CoverageFlag&, const CoverageFlag&) = default;
};

std::vector<CoverageFlag> coverageFlags(const std::vector<SubjectTrackingRange>& ranges);

/// Reaches a little into the graph: flags stand above the lane.
class CoverageBar final : public TimelineLane {
    Q_OBJECT

public:
    static constexpr int overlap = 8; ///< pixels

    CoverageBar(TimelineContext& context, QWidget* parent);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void refresh();
    const CoverageFlag* flagAt(QPointF place) const;
    void paintFlag(QPainter& painter, const CoverageFlag& flag) const;

    std::vector<CoverageFlag> flags_;
    const CoverageFlag* hovered_ = nullptr; ///< in flags_
    Subscription changes_;
};

} // namespace flowtide
