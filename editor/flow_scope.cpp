// Matching of ranges, and the scope's state.
#include "editor/flow_scope.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace flowtide {

namespace {

struct Match {
    double overlap; ///< source seconds
    std::size_t before;
    std::size_t fresh;
};

/// Every pair of an old and a fresh range that overlap, the longest overlap first. Both lists are sorted and free of
/// overlaps, so there are no more pairs than ranges.
std::vector<Match> matches(const std::vector<OpticalFlowRange>& before, const SourceRanges& fresh) {
    std::vector<Match> result;
    std::size_t first = 0;
    for (std::size_t i = 0; i < fresh.size(); ++i) {
        while (first < before.size() && before[first].end <= fresh[i].lower)
            ++first;
        for (std::size_t j = first; j < before.size() && before[j].start < fresh[i].upper; ++j)
            result.push_back(
                {std::min(fresh[i].upper, before[j].end) - std::max(fresh[i].lower, before[j].start), j, i});
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const Match& a, const Match& b) { return a.overlap > b.overlap; });
    return result;
}

} // namespace

bool switchesOff(const SourceRange& span, const OpticalFlowRange& range) {
    return span.upper >= range.start && span.lower <= range.end;
}

FlowMarks carriedOver(const FlowMarks& before, const SourceRanges& freshRanges) {
    FlowMarks marks;
    for (const SourceRange& fresh : freshRanges)
        marks.ranges.push_back({Uuid{}, fresh.lower, fresh.upper});
    std::vector<OpticalFlowRange> old = before.ranges;
    std::sort(old.begin(), old.end(), [](const auto& a, const auto& b) { return a.start < b.start; });

    std::vector<OpticalFlowRange> heirs = old; // a range without one stands for itself
    std::vector<bool> hasHeir(old.size());
    for (const Match& match : matches(old, freshRanges)) {
        OpticalFlowRange& fresh = marks.ranges[match.fresh];
        if (hasHeir[match.before] || fresh.id != Uuid{}) continue;
        hasHeir[match.before] = true;
        fresh.id = old[match.before].id;
        heirs[match.before] = fresh;
    }
    for (OpticalFlowRange& range : marks.ranges)
        if (range.id == Uuid{}) range.id = Uuid::random();

    for (const SourceRange& span : before.originalFrameSpans) {
        SourceRanges moved;
        bool isMoved = false;
        for (std::size_t i = 0; i < old.size(); ++i) {
            if (!switchesOff(span, old[i])) continue;
            moved.push_back({heirs[i].start, heirs[i].end});
            isMoved = isMoved || heirs[i] != old[i];
        }
        if (!isMoved) moved = {span};
        for (const SourceRange& each : moved)
            if (std::find(marks.originalFrameSpans.begin(), marks.originalFrameSpans.end(), each) ==
                marks.originalFrameSpans.end())
                marks.originalFrameSpans.push_back(each);
    }
    return marks;
}

FlowScope::FlowScope(ChangeNotifier& notifier)
    : frameInterpolation_(notifier, Property::frameInterpolation, FrameInterpolation::opticalFlow)
    , opticalFlowRanges_(notifier, Property::opticalFlowRanges)
    , selectedOpticalFlowRangeID_(notifier, Property::selectedOpticalFlowRangeID)
    , originalFrameSpans_(notifier, Property::originalFrameSpans) {}

const OpticalFlowRange* FlowScope::range(const Uuid& id) const {
    const auto& ranges = opticalFlowRanges();
    const auto found =
        std::find_if(ranges.begin(), ranges.end(), [&](const OpticalFlowRange& each) { return each.id == id; });
    return found == ranges.end() ? nullptr : &*found;
}

bool FlowScope::isSwitchedOn(const OpticalFlowRange& range) const {
    const auto& spans = originalFrameSpans();
    return std::none_of(spans.begin(), spans.end(), [&](const SourceRange& span) { return switchesOff(span, range); });
}

SourceRanges FlowScope::effectiveRanges(SourceRange trim) const {
    SourceRanges on;
    for (const OpticalFlowRange& range : opticalFlowRanges())
        if (isSwitchedOn(range)) on.push_back({range.start, range.end});
    return OpticalFlowScope::normalized(on, trim);
}

SourceRanges FlowScope::automaticRanges(const SpeedCurve& curve, double frameRate, double smoothFrameRate) {
    SourceRanges ranges = AutomaticOpticalFlow::ranges(curve.keyframes(), curve.smoothing(), curve.duration(),
                                                       curve.trimRange(), frameRate, smoothFrameRate);
    if (ranges.size() > mostRanges) ranges.resize(mostRanges); // what a project can hold
    return ranges;
}

void FlowScope::setFrameInterpolation(FrameInterpolation interpolation) {
    frameInterpolation_.set(interpolation);
}

void FlowScope::setMarks(FlowMarks marks) {
    opticalFlowRanges_.set(std::move(marks.ranges));
    originalFrameSpans_.set(std::move(marks.originalFrameSpans));
    if (selectedOpticalFlowRangeID() && !range(*selectedOpticalFlowRangeID())) select({});
}

void FlowScope::select(std::optional<Uuid> id) {
    selectedOpticalFlowRangeID_.set(id && range(*id) ? id : std::nullopt);
}

void FlowScope::reset() {
    setMarks({});
    frameInterpolation_.set(FrameInterpolation::opticalFlow);
}

} // namespace flowtide
