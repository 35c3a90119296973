// Which stretches of a clip are worth rendering ahead, and which frames a render of one consists of.
#pragma once

#include "core/optical_flow_ranges.h"
#include "core/time.h"
#include "core/time_map.h"
#include "media/media_time.h"

#include <cstdint>
#include <optional>

namespace flowtide {

/// What a preview renders at most in one go, output seconds: so that each ends soon and an edit wastes little.
constexpr double longestPreviewSeconds = 5;
/// Source seconds; a shorter piece is nothing.
constexpr double shortestPieceSeconds = 1e-6;

/// A retimed clip as an export makes it: output frames at whole multiples of the frame duration.
struct RetimedOutput {
    const TimeMap& timeMap; ///< of the whole trim
    MediaTime frameDuration;
};

/// A range widened to whole output frames, so that a render of it has the frames of the whole export.
struct WholeFrames {
    SourceRange range;
    std::int64_t firstFrame = 0; ///< its number in the whole export
    double leadSeconds = 0;      ///< output seconds from that frame to the start of the range that was widened
};

namespace PreviewRanges {

/// Whether `range` lies within one of `ranges`.
bool isCovered(const SourceRange& range, const SourceRanges& ranges);

/// How long a range plays, output seconds.
double outputLength(const SourceRange& range, const TimeMap& timeMap);

/// The parts of `range` before and after `cut`; those that are nothing are left out.
SourceRanges outside(const SourceRange& range, const SourceRange& cut);

/// The parts of `ranges` (normalised) that none of `rendered` covers, in order. A part in which no output frame begins
/// has nothing to render and is left out.
SourceRanges unrendered(const RetimedOutput& output, const SourceRanges& ranges, const SourceRanges& rendered);

/// At most `longestPreviewSeconds` of a range, as near to around `centre` as they can be.
SourceRange narrowed(const TimeMap& timeMap, const SourceRange& range, OutputSeconds centre);

/// What to render while nobody does anything: up to `longestPreviewSeconds` around the playhead, within the one of
/// `ranges` (normalised) in which it stands. Nothing when that is rendered.
std::optional<SourceRange> automatic(const RetimedOutput& output, const SourceRanges& ranges,
                                     const SourceRanges& rendered, SourceSeconds playhead);

WholeFrames widenedToFrames(const RetimedOutput& output, const SourceRange& range);

} // namespace PreviewRanges
} // namespace flowtide
