// Chooses framing keyframes: a calm path that suits all samples, then as few points as draw a curve near enough to it.
#include "core/subject_keyframes.h"

#include "core/clamp.h"
#include "core/crop_framing.h"
#include "core/curve_evaluator.h"
#include "core/subject_track.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace flowtide {

namespace SubjectKeyframes {

std::vector<Window> windows(std::span<const double> times, double radius) {
    std::vector<Window> result;
    result.reserve(times.size());
    Window window;
    for (const double time : times) {
        while (times[window.first] < time - radius)
            ++window.first;
        while (window.last + 1 < times.size() && times[window.last + 1] <= time + radius)
            ++window.last;
        result.push_back(window);
    }
    return result;
}

namespace {

/// The level that most gates from the first on share, or the side of it from which the path has to leave.
double levelThrough(std::span<const Gate> gates) {
    double lowest = -std::numeric_limits<double>::infinity();
    double highest = std::numeric_limits<double>::infinity();
    for (const Gate& gate : gates) {
        if (gate.lowest > highest) return highest;
        if (gate.highest < lowest) return lowest;
        lowest = std::max(lowest, gate.lowest);
        highest = std::min(highest, gate.highest);
    }
    return (lowest + highest) / 2;
}

} // namespace

std::vector<double> tautString(std::span<const Gate> given) {
    if (given.empty()) return {};
    std::vector<Gate> gates(given.begin(), given.end());
    const double start = levelThrough(gates);
    const double end = levelThrough(std::vector<Gate>(gates.rbegin(), gates.rend()));
    gates.front().lowest = gates.front().highest = start;
    gates.back().lowest = gates.back().highest = end;

    // The funnel of straight lines from the last bend that pass all gates so far narrows until it closes: there the
    // path bends around the gate that closed it.
    std::vector<double> path(gates.size(), start);
    std::size_t bend = 0;
    while (bend + 1 < gates.size()) {
        const auto slopeTo = [&](std::size_t i, double value) {
            return (value - path[bend]) / (gates[i].time - gates[bend].time);
        };
        std::size_t low = bend;
        std::size_t high = bend;
        double least = -std::numeric_limits<double>::infinity();
        double most = std::numeric_limits<double>::infinity();
        double slope = 0;
        std::optional<std::size_t> next;
        for (std::size_t i = bend + 1; i < gates.size() && !next; ++i) {
            const double leastHere = slopeTo(i, gates[i].lowest);
            const double mostHere = slopeTo(i, gates[i].highest);
            if (leastHere > most) {
                next = high;
                slope = most;
            } else if (mostHere < least) {
                next = low;
                slope = least;
            } else {
                if (leastHere >= least) {
                    least = leastHere;
                    low = i;
                }
                if (mostHere <= most) {
                    most = mostHere;
                    high = i;
                }
                if (i + 1 == gates.size()) {
                    next = i;
                    slope = leastHere;
                }
            }
        }
        for (std::size_t i = bend + 1; i <= *next; ++i)
            path[i] = path[bend] + slope * (gates[i].time - gates[bend].time);
        bend = *next;
    }
    return path;
}

} // namespace SubjectKeyframes

namespace {

using namespace SubjectKeyframes;

/// Of the tolerance: what the path may use of it. The rest is for the curve that is drawn near the path.
constexpr double pathShare = 0.8;
constexpr CurveEngine::Limits wholeTravel{leftmostCrop, rightmostCrop};

/// A curve through some of a path's points, by index.
class Selection {
public:
    Selection(std::span<const double> times, std::span<const double> wanted, std::span<const double> path,
              double tolerance)
        : times_(times)
        , wanted_(wanted)
        , path_(path)
        , tolerance_(tolerance)
        , chosen_{0} {
        if (times.size() > 1) chosen_.push_back(times.size() - 1);
    }

    /// Takes points in until the curve suits every sample.
    void refine() {
        while (const auto worst = worstSample(0, chosen_.size() - 1, chosen_))
            chosen_.insert(std::lower_bound(chosen_.begin(), chosen_.end(), worst->index), worst->index);
    }

    /// Leaves points out again for as long as the curve still suits every sample; first those that bring the samples
    /// least far from the path.
    void prune() {
        for (;;) {
            std::optional<std::size_t> best;
            double bestStray = std::numeric_limits<double>::infinity();
            for (std::size_t i = 1; i + 1 < chosen_.size(); ++i) {
                std::vector<std::size_t> fewer = chosen_;
                fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
                // A point shapes the curve up to the second one on either side.
                const std::size_t first = i > 1 ? i - 2 : 0;
                const std::size_t last = std::min(i + 1, fewer.size() - 1);
                if (worstSample(first, last, fewer)) continue;
                const double stray = strayFromPath(first, last, fewer);
                if (stray < bestStray) {
                    best = i;
                    bestStray = stray;
                }
            }
            if (!best) return;
            chosen_.erase(chosen_.begin() + static_cast<std::ptrdiff_t>(*best));
        }
    }

    SpeedKeyframes keyframes() const { return keyframesOf(chosen_); }

private:
    struct Worst {
        std::size_t index;
        double excess;
    };

    SpeedKeyframes keyframesOf(const std::vector<std::size_t>& points) const {
        SpeedKeyframes keyframes;
        for (const std::size_t i : points)
            keyframes.push_back({.id = {}, .time = times_[i], .speed = path_[i]});
        return keyframes;
    }

    /// Calls visit(sample, value of the curve through `points`) for the samples from point `first` to point `last`.
    template <typename Visit>
    void walk(std::size_t first, std::size_t last, const std::vector<std::size_t>& points, Visit visit) const {
        // Slopes at the stretch's ends look one point farther.
        const auto from = points.begin() + static_cast<std::ptrdiff_t>(first > 0 ? first - 1 : 0);
        const auto to = points.begin() + static_cast<std::ptrdiff_t>(std::min(last + 2, points.size()));
        const SpeedKeyframes keyframes = keyframesOf({from, to});
        CurveEvaluator curve(keyframes, 1, wholeTravel);
        for (std::size_t i = points[first]; i <= points[last]; ++i)
            visit(i, curve(times_[i]));
    }

    /// The sample that the curve leaves farthest outside the tolerance.
    std::optional<Worst> worstSample(std::size_t first, std::size_t last,
                                     const std::vector<std::size_t>& points) const {
        std::optional<Worst> worst;
        walk(first, last, points, [&](std::size_t i, double value) {
            // A path that could not suit the sample is all that can be asked for.
            const double allowed = std::max(tolerance_, std::abs(path_[i] - wanted_[i]) + (1 - pathShare) * tolerance_);
            const double excess = std::abs(value - wanted_[i]) - allowed;
            if (excess > (worst ? worst->excess : rounding)) worst = {i, excess};
        });
        return worst;
    }

    double strayFromPath(std::size_t first, std::size_t last, const std::vector<std::size_t>& points) const {
        double most = 0;
        walk(first, last, points,
             [&](std::size_t i, double value) { most = std::max(most, std::abs(value - path_[i])); });
        return most;
    }

    static constexpr double rounding = 1e-9;

    std::span<const double> times_;
    std::span<const double> wanted_;
    std::span<const double> path_;
    double tolerance_;
    std::vector<std::size_t> chosen_;
};

} // namespace

SpeedKeyframes SubjectTrackResult::keyframes(double cropFraction, double tolerance, double radius) const {
    if (samples.empty()) return {};
    if (!(cropFraction > 0 && cropFraction < 1))
        return {{.id = Uuid::random(), .time = samples.front().time, .speed = centeredCrop}};

    std::vector<double> times;
    // Where the crop's middle would be the subject's, as shares of the crop's travel. Near the frame's sides that is
    // outside the travel, so that the crop goes all the way.
    std::vector<double> centers;
    for (const Sample& sample : samples) {
        times.push_back(sample.time);
        centers.push_back((sample.centerX - cropFraction / 2) / (1 - cropFraction));
    }
    const double slack = tolerance * cropFraction / (1 - cropFraction);
    std::vector<Gate> gates;
    for (const Window& window : windows(times, radius)) {
        const auto from = centers.begin() + static_cast<std::ptrdiff_t>(window.first);
        const auto to = centers.begin() + static_cast<std::ptrdiff_t>(window.last) + 1;
        const auto [least, most] = std::minmax_element(from, to);
        double lowest = *most - pathShare * slack;
        double highest = *least + pathShare * slack;
        // Nothing suits a window in which the subject crosses more than the tolerance; its middle is fairest.
        if (lowest > highest) lowest = highest = (lowest + highest) / 2;
        gates.push_back({times[gates.size()], clamped(lowest, leftmostCrop, rightmostCrop),
                         clamped(highest, leftmostCrop, rightmostCrop)});
    }
    const std::vector<double> path = tautString(gates);
    Selection selection(times, centers, path, slack);
    selection.refine();
    selection.prune();
    SpeedKeyframes keyframes = selection.keyframes();
    for (SpeedKeyframe& keyframe : keyframes)
        keyframe.id = Uuid::random();
    return keyframes;
}

} // namespace flowtide
