// Points in the hand: how far they can go together, and where they are then.
#pragma once

#include "ui/graph/curve_graph_geometry.h"

#include <optional>

namespace flowtide {

/// A drag of one or several points from where they are. All move by the same time and by the same factor (on a linear
/// axis: by the same difference); what stops one stops all. Trim edges stay at their times.
class CurveDrag {
public:
    struct Result {
        SpeedKeyframes points;           ///< all of the curve
        double shift = 0;                ///< source seconds
        std::optional<double> blockedAt; ///< source seconds: what the points cannot come nearer to
    };

    /// `points`: all of the curve, sorted; `grabbed`: the one that is held, among `moved`.
    CurveDrag(SpeedKeyframes points, const PointSelection::Ids& moved, const Uuid& grabbed, SourceRange kept,
              double duration, const CurveEditorAxis& axis);

    const SpeedKeyframes& startPoints() const { return points_; }
    const PointSelection::Ids& movedIds() const { return moved_; }
    const SpeedKeyframe& grabbed() const { return grabbed_; } ///< as it was
    /// The grabbed point is to be `shift` seconds from where it was, at a value.
    Result moved(double shift, double grabbedValue) const;

private:
    void findTimeLimits(const SourceRange& kept, double duration);

    SpeedKeyframes points_;
    PointSelection::Ids moved_;
    SpeedKeyframe grabbed_;
    ValueRange limits_;
    bool isLogScale_;
    double mostBack_ = 0; ///< source seconds, not above 0
    double mostAhead_ = 0;
    double backStop_ = 0; ///< source seconds: who stops it there
    double aheadStop_ = 0;
};

} // namespace flowtide
