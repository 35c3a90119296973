// The arithmetic of segments.
#include "media/preview/retimed_composition_engine.h"

#include "core/curve_evaluator.h"
#include "media/flowtide_error.h"
#include "media/preview/cached_preview_composition.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace flowtide::RetimedCompositionEngine {

namespace {

constexpr double shortestSegment = 0.000001; // source seconds

// A segment shows one source frame at these rates; beyond them, the speed inside a segment hardly changes.
constexpr double lowestSegmentRate = 24;
constexpr double highestSegmentRate = 60;

std::int64_t segmentCount(const RetimedCompositionRequest& request, double length) {
    const double rate =
        request.segmentRate.value_or(std::clamp(request.clip->frameRate, lowestSegmentRate, highestSegmentRate));
    const std::int64_t most = std::max<std::int64_t>(request.maximumSegmentCount, 1);
    const double wanted = std::ceil(length * rate);
    if (!(wanted > 1)) return 1;
    return wanted < static_cast<double>(most) ? static_cast<std::int64_t>(wanted) : most;
}

/// A boundary between two segments.
struct Boundary {
    CompositionTime source;
    CompositionTime output;
};

class Segments {
public:
    explicit Segments(const RetimedCompositionRequest& request)
        : request_(request)
        , speed_(request.keyframes, request.smoothing, CurveEngine::speedLimits) {}

    CompositionTrack cut() {
        const SourceRange range = request_.sourceRange.value_or(SourceRange{0, request_.clip->duration});
        const double length = std::max(range.upper - range.lower, shortestSegment);
        const std::int64_t count = segmentCount(request_, length);
        const double segmentLength = length / static_cast<double>(count);
        double output = 0;
        last_ = boundary(0, range.lower, output);
        track_.reserve(static_cast<std::size_t>(count));
        for (std::int64_t i = 0; i < count; ++i) {
            const double start = range.lower + static_cast<double>(i) * segmentLength;
            const double end = i + 1 == count ? range.upper : range.lower + static_cast<double>(i + 1) * segmentLength;
            if (end - start <= shortestSegment) continue;
            output += (end - start) / speed_(start + (end - start) / 2);
            append(boundary(i, end, output));
        }
        joinRest();
        return std::move(track_);
    }

private:
    /// Boundaries are rounded, never lengths, so that no error adds up.
    Boundary boundary(std::int64_t segment, double source, double output) const {
        const auto sourceTime = CompositionTime::nearest(source);
        const auto outputTime = CompositionTime::nearest(output);
        if (!sourceTime || !outputTime)
            throw FlowtideError::compositionFailed(
                fmt::format("Could not insert video segment {}: its time is out of range", segment));
        return {*sourceTime, *outputTime};
    }

    /// What is shorter than a tick joins the segment after it.
    void append(const Boundary& end) {
        rest_ = end;
        if (end.source == last_.source || end.output == last_.output) return;
        track_.push_back({0, last_.source, end.source, last_.output, end.output});
        last_ = end;
        rest_.reset();
    }

    void joinRest() {
        if (!rest_ || track_.empty()) return;
        track_.back().sourceEnd = rest_->source;
        track_.back().outputEnd = rest_->output;
    }

    const RetimedCompositionRequest& request_;
    CurveEvaluator speed_;
    CompositionTrack track_;
    Boundary last_;
    std::optional<Boundary> rest_;
};

TimeMap mapOf(const CompositionTrack& track) {
    if (track.empty()) return {};
    std::vector<TimeMap::Entry> entries;
    entries.reserve(track.size() + 1);
    for (const CompositionSegment& segment : track)
        entries.push_back({segment.sourceStart.seconds(), segment.outputStart.seconds()});
    const CompositionSegment& last = track.back();
    entries.push_back({last.sourceEnd.seconds(), last.outputEnd.seconds()});
    const SourceRange range{entries.front().source, entries.back().source};
    return TimeMap(std::move(entries), range, last.outputEnd.seconds());
}

} // namespace

RetimedMedia build(const RetimedCompositionRequest& request) {
    if (request.clip->encodedWidth() < 1 || request.clip->encodedHeight() < 1)
        throw FlowtideError::compositionFailed("Could not create video composition track");
    RetimedMedia media;
    media.asset.media.push_back({request.clip->url, 0, request.clip});
    media.asset.video = Segments(request).cut();
    media.timeMap = mapOf(media.asset.video);
    if (!request.cachedPreviews.empty())
        media = CachedPreviewComposition::build(std::move(media), request.cachedPreviews);

    if (!request.includeAudio || !request.clip->hasAudio()) return media;
    if (request.previewAudio) {
        media.renderedAudioURL = request.previewAudio->renderer.render(request.previewAudio->audio, media.timeMap);
    } else {
        media.asset.audio = media.asset.video;
        media.audioMix.emplace();
        media.stretchesAudio = true;
    }
    return media;
}

} // namespace flowtide::RetimedCompositionEngine
