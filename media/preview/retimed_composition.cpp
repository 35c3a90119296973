// Looking up what a composition shows.
#include "media/preview/retimed_composition.h"

#include "core/clamp.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

using Iterator = CompositionTrack::const_iterator;

/// The first segment that ends after a time; going backward, that ends at or after it.
Iterator firstEndingAfter(const CompositionTrack& track, double time, PlayDirection direction) {
    return std::partition_point(track.begin(), track.end(), [&](const CompositionSegment& segment) {
        const double end = segment.outputEnd.seconds();
        return direction == PlayDirection::forward ? end <= time : end < time;
    });
}

bool beginsBefore(const CompositionSegment& segment, double time, PlayDirection direction) {
    const double start = segment.outputStart.seconds();
    return direction == PlayDirection::forward ? start <= time : start < time;
}

CompositionStretch stretchOf(const RetimedComposition& composition, const CompositionSegment& segment) {
    const double offset = composition.media.at(segment.medium).startOffset;
    return {segment.medium,
            offset + segment.sourceStart.seconds(),
            offset + segment.sourceEnd.seconds(),
            {segment.outputStart.seconds()},
            {segment.outputEnd.seconds()}};
}

/// The part of a stretch between two output times that overlap it.
CompositionStretch cut(const CompositionStretch& stretch, double start, double end) {
    CompositionStretch part = stretch;
    if (start > stretch.outputStart.value) {
        part.fileStart = stretch.at({start}).fileSeconds;
        part.outputStart = {start};
    }
    if (end < stretch.outputEnd.value) {
        part.fileEnd = stretch.at({end}).fileSeconds;
        part.outputEnd = {end};
    }
    return part;
}

double clampedInto(const CompositionTrack& track, double time) {
    return clamped(time, 0, track.back().outputEnd.seconds());
}

/// The segment of a track without gaps that plays at a time within it.
Iterator segmentAt(const CompositionTrack& track, double time, PlayDirection direction) {
    const Iterator found = firstEndingAfter(track, time, direction);
    return found == track.end() ? std::prev(found) : found;
}

} // namespace

std::optional<CompositionTime> CompositionTime::nearest(double seconds) {
    constexpr double largest = 9e18; // fits the integer
    const double ticks = seconds * timescale;
    if (!(std::abs(ticks) < largest)) return std::nullopt;
    return CompositionTime{std::llround(ticks)};
}

MediumPlace CompositionStretch::at(OutputSeconds time) const {
    const double length = outputEnd.value - outputStart.value;
    const double share = clamped((time.value - outputStart.value) / length, 0, 1);
    return {medium, fileStart + share * (fileEnd - fileStart)};
}

OutputSeconds RetimedComposition::duration() const {
    return {video.empty() ? 0 : video.back().outputEnd.seconds()};
}

std::optional<CompositionStretch> RetimedComposition::videoStretchAt(OutputSeconds time,
                                                                     PlayDirection direction) const {
    if (video.empty()) return std::nullopt;
    const double at = clampedInto(video, time.value);
    // At the ends there is only one side to look at.
    if (at <= 0) direction = PlayDirection::forward;
    if (at >= duration().value) direction = PlayDirection::backward;
    const Iterator preview = firstEndingAfter(cachedPreviews, at, direction);
    if (preview != cachedPreviews.end() && beginsBefore(*preview, at, direction)) return stretchOf(*this, *preview);

    const CompositionStretch base = stretchOf(*this, *segmentAt(video, at, direction));
    const double before = preview == cachedPreviews.begin() ? 0 : std::prev(preview)->outputEnd.seconds();
    const double after = preview == cachedPreviews.end() ? base.outputEnd.value : preview->outputStart.seconds();
    return cut(base, before, after);
}

std::optional<MediumPlace> RetimedComposition::videoAt(OutputSeconds time) const {
    const auto stretch = videoStretchAt(time);
    return stretch ? std::optional(stretch->at(time)) : std::nullopt;
}

std::optional<MediumPlace> RetimedComposition::audioAt(OutputSeconds time) const {
    if (audio.empty()) return std::nullopt;
    const double at = clampedInto(audio, time.value);
    return stretchOf(*this, *segmentAt(audio, at, PlayDirection::forward)).at({at});
}

} // namespace flowtide
