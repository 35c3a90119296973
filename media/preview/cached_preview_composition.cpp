// Previews as segments of a track of their own.
#include "media/preview/cached_preview_composition.h"

#include "media/flowtide_error.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace flowtide::CachedPreviewComposition {

namespace {

/// A preview's segments, cut where the base's are: a preview was rendered with a finer map, and a single segment would
/// drift from the base in between.
class PreviewLayer {
public:
    PreviewLayer(const RetimedMedia& base, const RenderedPreview& preview, std::size_t medium)
        : base_(base)
        , preview_(preview)
        , medium_(medium) {}

    void appendTo(CompositionTrack& track) const {
        const CompositionTrack& video = base_.asset.video;
        const SourceRange range = preview_.timeMap.sourceRange();
        CompositionTime from = outputOf(range.lower);
        const CompositionTime end = outputOf(range.upper);
        if (!track.empty()) from = std::max(from, track.back().outputEnd);
        auto segment = std::partition_point(video.begin(), video.end(),
                                            [&](const CompositionSegment& each) { return each.outputEnd <= from; });
        for (; from < end && segment != video.end(); ++segment) {
            const CompositionTime to = std::min(segment->outputEnd, end);
            track.push_back({medium_, previewTimeAt(from), previewTimeAt(to), from, to});
            from = to;
        }
    }

private:
    CompositionTime outputOf(double source) const {
        return CompositionTime::nearest(base_.timeMap.outputTime({source}).value).value_or(CompositionTime{});
    }

    CompositionTime previewTimeAt(CompositionTime output) const {
        const SourceSeconds source = base_.timeMap.sourceTime({output.seconds()});
        return CompositionTime::nearest(preview_.timeMap.outputTime(source).value).value_or(CompositionTime{});
    }

    const RetimedMedia& base_;
    const RenderedPreview& preview_;
    std::size_t medium_;
};

} // namespace

RetimedMedia build(RetimedMedia base, std::span<const RenderedPreview> previews) {
    if (base.asset.video.empty())
        throw FlowtideError::compositionFailed("Could not create cached preview video track.");
    std::vector<const RenderedPreview*> ordered;
    for (const RenderedPreview& preview : previews)
        ordered.push_back(&preview);
    std::ranges::stable_sort(ordered, {},
                             [](const RenderedPreview* preview) { return preview->timeMap.sourceRange().lower; });
    CompositionTrack track;
    for (const RenderedPreview* preview : ordered) {
        const std::size_t medium = base.asset.media.size();
        base.asset.media.push_back(
            {preview->url, preview->fileStart, nullptr, std::make_shared<const TimeMap>(preview->timeMap)});
        PreviewLayer(base, *preview, medium).appendTo(track);
    }
    base.asset.cachedPreviews = std::move(track);
    return base;
}

} // namespace flowtide::CachedPreviewComposition
