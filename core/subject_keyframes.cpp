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

std::vector<double> tautString(std::span<const Gate> allowed) {
    if (allowed.empty()) return {};
    std::vector<Gate> gates(allowed.begin(), allowed.end());
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

/// A curve through points at some of the samples' times that suits every sample, of as few points as are found.
class Selection {
public:
    Selection(std::span<const double> times, std::span<const double> wanted, std::span<const double> path,
              double tolerance)
        : times_(times)
        , wanted_(wanted)
        , path_(path)
        , tolerance_(tolerance)
        , points_{{0, path.front()}} {
        if (times.size() > 1) points_.push_back({times.size() - 1, path.back()});
        // A path that could not suit a sample is all that can be asked for.
        for (std::size_t i = 0; i < times.size(); ++i)
            allowed_.push_back(std::max(tolerance, std::abs(path[i] - wanted[i]) + (1 - pathShare) * tolerance));
    }

    /// Takes points of the path in until the curve suits every sample.
    void refine() {
        if (points_.size() < 2) return;
        std::vector<Excess> worst{worstBetween(0)}; // by the point before it
        for (;;) {
            const auto most = std::max_element(worst.begin(), worst.end(),
                                               [](const Excess& a, const Excess& b) { return a.amount < b.amount; });
            if (most->amount <= rounding) return;
            const std::size_t sample = most->sample;
            const auto added = static_cast<std::size_t>(most - worst.begin()) + 1;
            points_.insert(points_.begin() + static_cast<std::ptrdiff_t>(added), {sample, path_[sample]});
            worst.insert(most, Excess{});
            const Stretch bent = stretchAround(points_, added, added);
            for (std::size_t i = bent.first; i < bent.last; ++i)
                worst[i] = worstBetween(i);
        }
    }

    /// Leaves points out again for as long as the curve still suits every sample; first those that bring the curve
    /// least far from the path.
    void prune() {
        std::vector<double> strays; // by point
        for (std::size_t i = 0; i < points_.size(); ++i)
            strays.push_back(strayWithout(i));
        for (;;) {
            const auto best = std::min_element(strays.begin(), strays.end());
            if (*best == indispensable) return;
            const auto removed = static_cast<std::size_t>(best - strays.begin());
            points_.erase(points_.begin() + static_cast<std::ptrdiff_t>(removed));
            strays.erase(best);
            const std::size_t first = removed > reach ? removed - reach : 0;
            for (std::size_t i = first; i < std::min(removed + reach, points_.size()); ++i)
                strays[i] = strayWithout(i);
        }
    }

    /// Leaves out points that can be done without once their neighbours are moved.
    void merge() {
        // By point: whether something near it has changed since it was tried.
        std::vector<bool> isWorthTrying(points_.size(), true);
        for (bool changes = true; changes;) {
            changes = false;
            for (std::size_t i = 1; i + 1 < points_.size(); ++i) {
                if (!isWorthTrying[i]) continue;
                Points fewer = without(i);
                isWorthTrying[i] = settle(fewer, i);
                if (!isWorthTrying[i]) continue;
                points_ = std::move(fewer);
                isWorthTrying.erase(isWorthTrying.begin() + static_cast<std::ptrdiff_t>(i));
                const std::size_t first = i > reach ? i - reach - 1 : 0;
                for (std::size_t k = first; k < std::min(i + reach + 1, points_.size()); ++k)
                    isWorthTrying[k] = true;
                changes = true;
                --i;
            }
        }
    }

    SpeedKeyframes keyframes() const { return keyframesOf(points_); }

private:
    struct Point {
        std::size_t sample; ///< at whose time it lies
        double value;
    };
    using Points = std::vector<Point>;
    /// Of points, by index, both inclusive.
    struct Stretch {
        std::size_t first;
        std::size_t last;
    };

    /// By how much a curve exceeds what is allowed at a sample.
    struct Excess {
        std::size_t sample = 0;
        double amount = 0;
    };
    /// The largest between a point and the next one.
    Excess worstBetween(std::size_t point) const {
        Excess worst;
        walk(points_, point, point + 1, [&](std::size_t i, double value) {
            if (const double amount = excessOf(i, value); amount > worst.amount) worst = {i, amount};
        });
        return worst;
    }

    static constexpr double indispensable = std::numeric_limits<double>::infinity();
    /// Points farther from one that is left out have no part in what is looked at around it: the stretch begins three
    /// before it, and its slopes look one farther. One more is to be safe.
    static constexpr std::size_t reach = 5;

    /// How far from the path a curve without one point comes, where it still suits every sample.
    double strayWithout(std::size_t point) const {
        if (point == 0 || point + 1 >= points_.size()) return indispensable;
        const std::size_t from = point > reach ? point - reach : 0;
        const std::size_t to = std::min(point + reach + 1, points_.size());
        Points fewer(points_.begin() + static_cast<std::ptrdiff_t>(from),
                     points_.begin() + static_cast<std::ptrdiff_t>(to));
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(point - from));
        const Stretch stretch = stretchAround(fewer, point - from - 1, point - from);
        if (misfit(fewer, stretch) > 0) return indispensable;
        double stray = 0;
        walk(fewer, stretch.first, stretch.last,
             [&](std::size_t i, double value) { stray = std::max(stray, std::abs(value - path_[i])); });
        return stray;
    }

    Points without(std::size_t i) const {
        Points fewer = points_;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
        return fewer;
    }

    /// What points `first` to `last` shape: a point bends the curve up to the second one on either side.
    static Stretch stretchAround(const Points& points, std::size_t first, std::size_t last) {
        return {first > 2 ? first - 2 : 0, std::min(last + 2, points.size() - 1)};
    }

    SpeedKeyframes keyframesOf(std::span<const Point> points) const {
        SpeedKeyframes keyframes;
        for (const Point& point : points)
            keyframes.push_back({.id = {}, .time = times_[point.sample], .speed = point.value});
        return keyframes;
    }

    /// Calls visit(sample, value of the curve) for the samples from point `first` to point `last`.
    template <typename Visit>
    void walk(const Points& points, std::size_t first, std::size_t last, Visit visit) const {
        // Slopes at the stretch's ends look one point farther.
        const std::size_t from = first > 0 ? first - 1 : 0;
        const std::size_t to = std::min(last + 2, points.size());
        const SpeedKeyframes keyframes = keyframesOf(std::span(points).subspan(from, to - from));
        CurveEvaluator curve(keyframes, 1, wholeTravel);
        for (std::size_t i = points[first].sample; i <= points[last].sample; ++i)
            visit(i, curve(times_[i]));
    }

    double excessOf(std::size_t i, double value) const { return std::abs(value - wanted_[i]) - allowed_[i]; }

    /// 0 when the curve suits every sample of the stretch, else the more the worse.
    double misfit(const Points& points, Stretch stretch) const {
        double sum = 0;
        walk(points, stretch.first, stretch.last, [&](std::size_t i, double value) {
            const double excess = excessOf(i, value);
            if (excess > rounding) sum += excess * excess;
        });
        return sum;
    }

    /// Moves the points before and at `i` until the curve suits every sample around them. False when that fails.
    bool settle(Points& points, std::size_t i) const {
        constexpr int mostRounds = 40;
        constexpr double leastStep = 0.05;
        double step = 0.5; // of the tolerance in value, of half the way to the next point in time
        const Stretch stretch = stretchAround(points, i - 1, i);
        double best = misfit(points, stretch);
        const auto tryPoint = [&](std::size_t k, Point moved) {
            const Point old = points[k];
            points[k] = moved;
            const double now = misfit(points, stretch);
            if (now < best) {
                best = now;
                return true;
            }
            points[k] = old;
            return false;
        };
        for (int round = 0; round < mostRounds && best > 0 && step > leastStep; ++round) {
            bool improves = false;
            for (const std::size_t k : {i - 1, i}) {
                for (const double sign : {-1.0, 1.0}) {
                    Point moved = points[k];
                    moved.value = clamped(moved.value + sign * step * tolerance_, leftmostCrop, rightmostCrop);
                    improves |= tryPoint(k, moved);
                    if (k == 0 || k + 1 == points.size()) continue;
                    moved = points[k];
                    const std::size_t room =
                        sign < 0 ? moved.sample - points[k - 1].sample : points[k + 1].sample - moved.sample;
                    const auto shift = static_cast<std::size_t>(step * static_cast<double>(room) / 2);
                    if (shift == 0) continue;
                    moved.sample = sign < 0 ? moved.sample - shift : moved.sample + shift;
                    improves |= tryPoint(k, moved);
                }
            }
            if (!improves) step /= 2;
        }
        return best <= 0;
    }

    static constexpr double rounding = 1e-9;

    std::span<const double> times_;
    std::span<const double> wanted_;
    std::span<const double> path_;
    double tolerance_;
    std::vector<double> allowed_; ///< by sample, how far the curve may be from what is wanted
    Points points_;
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
    selection.merge();
    SpeedKeyframes keyframes = selection.keyframes();
    for (SpeedKeyframe& keyframe : keyframes)
        keyframe.id = Uuid::random();
    return keyframes;
}

} // namespace flowtide
