// The speed curve of the open clip, the kept part of the clip, and the time map that the two make.
#pragma once

#include "core/time_map.h"
#include "editor/change_notifier.h"
#include "editor/curve_points.h"

#include <optional>

namespace flowtide {

/// Main thread only. Times are source seconds.
class SpeedCurve {
public:
    static constexpr double defaultSmoothing = 0.5;

    explicit SpeedCurve(ChangeNotifier& notifier);

    const SpeedKeyframes& keyframes() const { return keyframes_.get(); }
    double smoothing() const { return smoothing_.get(); }
    /// The kept part; 0...0 while no clip is open.
    SourceRange trimRange() const { return trimRange_.get(); }
    double duration() const { return duration_; }
    CurveDomain domain() const;

    /// The points as this curve can take them; nothing when they are too many.
    std::optional<SpeedKeyframes> bounded(SpeedKeyframes points) const;
    /// The speed at which a time plays.
    double speedAt(double time) const;
    /// Whether everything plays at speed 1.
    bool isIdentity() const;

    /// The map of the kept part. Built anew only when the curve or the trim has changed; a reference to it holds until
    /// then.
    const TimeMap& timeMap() const;

    // These install, and decide nothing:
    void setKeyframes(SpeedKeyframes keyframes);
    void setSmoothing(double smoothing); ///< 0...1
    void setTrim(SourceRange trim, SpeedKeyframes keyframes);
    /// Another clip, or none (0): the default curve over all of it.
    void reset(double duration);

private:
    Observed<SpeedKeyframes> keyframes_;
    Observed<double> smoothing_;
    Observed<SourceRange> trimRange_;
    double duration_ = 0;

    struct CachedMap {
        SpeedKeyframes keyframes;
        double smoothing = defaultSmoothing;
        SourceRange sourceRange;
        TimeMap map;
    };
    mutable std::optional<CachedMap> cachedTimeMap_;
};

} // namespace flowtide
