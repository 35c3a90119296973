// Lists of points with points added, removed or set.
#pragma once

#include "ui/graph/curve_graph_geometry.h"

#include <optional>

namespace flowtide::curvePointEdits {

/// Which part of which clip a curve is played over.
struct Span {
    SourceRange kept;
    double duration = 0; ///< source seconds
};

struct Added {
    SpeedKeyframes points;
    PointSelection::Ids ids; ///< of the new points
};

/// The played point that is too near to a time for another one.
const SpeedKeyframe* pointNear(const SpeedKeyframes& points, double time, const Span& span);
/// With a point more; nothing where there is no room for it.
std::optional<Added> withPoint(const SpeedKeyframes& points, double time, double value, const Span& span);
/// Without these; trim edges get the neutral value instead, and the last point stays.
SpeedKeyframes withoutPoints(const SpeedKeyframes& points, const PointSelection::Ids& ids, const CurveEditorAxis& axis);
SpeedKeyframes withValue(SpeedKeyframes points, const PointSelection::Ids& ids, double value);

/// Points to paste: times from the first one.
SpeedKeyframes copied(const SpeedKeyframes& points, const PointSelection::Ids& ids);
/// With copied points from a time on, in place of those that are too near to them. Those beyond the kept part are left
/// out.
Added pasted(const SpeedKeyframes& points, const SpeedKeyframes& copied, double time, const Span& span);

/// The played point before (-1) or after (+1) the selected ones, or else next to a time.
std::optional<Uuid> steppedSelection(const SpeedKeyframes& points, const PointSelection::Ids& selected, double time,
                                     int step, const Span& span);

} // namespace flowtide::curvePointEdits
