// Arithmetic of ranges in both time bases.
#include "editor/preview/preview_ranges.h"

#include "core/clamp.h"

#include <algorithm>
#include <cmath>

namespace flowtide::PreviewRanges {

namespace {

/// The number of a source time among the output's frames: 2.5 in the middle of the third.
double framesBefore(const RetimedOutput& output, double source) {
    return output.timeMap.outputTime({source}).value / output.frameDuration.seconds();
}

/// In frames: nearer to a frame's start than this, a time is that start.
double grace(const RetimedOutput& output) {
    return frameReachedGraceSeconds / output.frameDuration.seconds();
}

/// The first frame that begins at a source time or after it.
double firstFrameFrom(const RetimedOutput& output, double source) {
    return std::ceil(framesBefore(output, source) - grace(output));
}

bool beginsAFrame(const RetimedOutput& output, const SourceRange& range) {
    const auto count = static_cast<double>(outputFrameCount(output.timeMap.outputDuration(), output.frameDuration));
    return firstFrameFrom(output, range.lower) < std::min(firstFrameFrom(output, range.upper), count);
}

double sourceOf(const TimeMap& timeMap, double output) {
    return timeMap.sourceTime({output}).value;
}

} // namespace

bool isCovered(const SourceRange& range, const SourceRanges& ranges) {
    return std::any_of(ranges.begin(), ranges.end(), [&](const SourceRange& each) {
        return each.lower <= range.lower + shortestPieceSeconds && range.upper <= each.upper + shortestPieceSeconds;
    });
}

double outputLength(const SourceRange& range, const TimeMap& timeMap) {
    return timeMap.outputTime({range.upper}).value - timeMap.outputTime({range.lower}).value;
}

SourceRanges outside(const SourceRange& range, const SourceRange& cut) {
    SourceRanges pieces;
    for (const SourceRange& piece : {SourceRange{range.lower, std::min(range.upper, cut.lower)},
                                     SourceRange{std::max(range.lower, cut.upper), range.upper}})
        if (piece.upper - piece.lower >= shortestPieceSeconds) pieces.push_back(piece);
    return pieces;
}

SourceRanges unrendered(const RetimedOutput& output, const SourceRanges& ranges, const SourceRanges& rendered) {
    SourceRanges pieces = ranges;
    for (const SourceRange& cut : rendered) {
        SourceRanges left;
        for (const SourceRange& piece : pieces)
            for (const SourceRange& part : outside(piece, cut))
                left.push_back(part);
        pieces = std::move(left);
    }
    std::erase_if(pieces, [&](const SourceRange& piece) { return !beginsAFrame(output, piece); });
    return pieces;
}

SourceRange narrowed(const TimeMap& timeMap, const SourceRange& range, OutputSeconds centre) {
    const double start = timeMap.outputTime({range.lower}).value;
    const double end = timeMap.outputTime({range.upper}).value;
    if (!(end - start > longestPreviewSeconds)) return range;
    constexpr double half = longestPreviewSeconds / 2;
    const double middle = clamped(centre.value, start + half, end - half);
    const auto within = [&](double time) { return clamped(sourceOf(timeMap, time), range.lower, range.upper); };
    return {within(middle - half), within(middle + half)};
}

std::optional<SourceRange> automatic(const RetimedOutput& output, const SourceRanges& ranges,
                                     const SourceRanges& rendered, SourceSeconds playhead) {
    const auto around = std::find_if(ranges.begin(), ranges.end(), [&](const SourceRange& range) {
        return range.lower <= playhead.value && playhead.value < range.upper;
    });
    if (around == ranges.end()) return std::nullopt;
    const TimeMap& timeMap = output.timeMap;
    const double length = timeMap.outputDuration();
    const double window = std::min(length, longestPreviewSeconds);
    const OutputSeconds here = timeMap.outputTime(playhead);
    const double start = std::max(std::min(here.value - window / 2, length - window), 0.0);
    const SourceRange wanted{std::max(sourceOf(timeMap, start), around->lower),
                             std::min(sourceOf(timeMap, start + window), around->upper)};
    if (!(wanted.lower < wanted.upper)) return std::nullopt;
    const SourceRanges gaps = unrendered(output, {wanted}, rendered);
    if (gaps.empty()) return std::nullopt;
    return narrowed(timeMap, gaps.front(), here);
}

WholeFrames widenedToFrames(const RetimedOutput& output, const SourceRange& range) {
    const double first = std::floor(framesBefore(output, range.lower) + grace(output));
    const double end = firstFrameFrom(output, range.upper);
    const auto startOf = [&](double frame) {
        return output.frameDuration.secondsTimes(static_cast<std::int64_t>(frame));
    };
    const SourceRange widened{sourceOf(output.timeMap, startOf(first)), sourceOf(output.timeMap, startOf(end))};
    const double lead = output.timeMap.outputTime({range.lower}).value - startOf(first);
    return {widened, static_cast<std::int64_t>(first), std::max(lead, 0.0)};
}

} // namespace flowtide::PreviewRanges
