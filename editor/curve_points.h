// What both curves of a session have in common: lists of points that are fit to be stored.
#pragma once

#include "core/curve_engine.h"
#include "core/keyframe_rules.h"
#include "core/speed_keyframe.h"
#include "core/time.h"

#include <optional>

namespace flowtide {

/// What a point of a curve may be.
struct CurveDomain {
    double duration = 0; ///< source seconds of the clip
    CurveEngine::Limits limits = CurveEngine::speedLimits;
    double restValue = 1; ///< of a curve that nobody has drawn
    double smoothing = 0; ///< with which the curve is evaluated
    /// Whether the outermost points go on to the clip's ends where none stands there. Else the curve comes from rest
    /// and returns to it.
    bool isHeldAtEnds = false;
};

/// The points in order of time, within the domain; points that are not numbers, and the later ones of an id that occurs
/// twice, are left out. With a boundary point at each end where the clip is trimmed; a new one gets the curve's value
/// there, or of `boundaryValues`, which lie in the domain. Never empty. Nothing when there are more than a project can
/// hold.
std::optional<SpeedKeyframes> boundedPoints(SpeedKeyframes points, SourceRange trim, const CurveDomain& domain,
                                            std::optional<KeyframeRules::BoundaryValues> boundaryValues = {});

/// The points that the curve over a trim is drawn by: those outside of it have no part in it.
SpeedKeyframes playedCurve(const SpeedKeyframes& points, SourceRange trim, const CurveDomain& domain);

/// The curve's value at a source time as it plays under a trim: outside of the trim as the points there draw it.
double playedValue(const SpeedKeyframes& points, double time, SourceRange trim, const CurveDomain& domain);

} // namespace flowtide
