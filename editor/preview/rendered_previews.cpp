// Validity, cutting, and the files that nobody needs any more.
#include "editor/preview/rendered_previews.h"

#include "core/keyframe_rules.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace flowtide {

RenderedPreviews::RenderedPreviews(const EditSession& session, ChangeNotifier& notifier)
    : session_(session)
    , renderedPreviews_(notifier, Property::renderedPreviews) {}

PreviewCurveSignature RenderedPreviews::Current::signature(const SourceRange& range) const {
    return PreviewCurveSignature::of(played, smoothing, range);
}

bool RenderedPreviews::Current::fits(const RenderedPreview& preview) const {
    const SourceRange range = preview.timeMap.sourceRange();
    return PreviewRanges::isCovered(range, flowRanges) && signature(range) == preview.signature;
}

RenderedPreviews::Current RenderedPreviews::current() const {
    const SpeedCurve& curve = session_.curve;
    return {KeyframeRules::curveForSourceRange(curve.keyframes(), curve.duration(), curve.trimRange(), realTimeSpeed),
            curve.smoothing(), session_.flow.effectiveRanges(curve.trimRange())};
}

PreviewCurveSignature RenderedPreviews::previewSignature(const SourceRange& range) const {
    return current().signature(range);
}

bool RenderedPreviews::isValid(const SourceRange& range, const PreviewCurveSignature& signature) const {
    const Current now = current();
    return PreviewRanges::isCovered(range, now.flowRanges) && now.signature(range) == signature;
}

SourceRanges RenderedPreviews::flowRanges() const {
    return showsFlow() ? session_.flow.effectiveRanges(session_.curve.trimRange()) : SourceRanges{};
}

std::vector<RenderedPreview> RenderedPreviews::activeCachedPreviews() const {
    std::vector<RenderedPreview> active;
    if (!showsFlow()) return active;
    std::copy_if(renderedPreviews().begin(), renderedPreviews().end(), std::back_inserter(active),
                 [now = current()](const RenderedPreview& preview) { return now.fits(preview); });
    return active;
}

SourceRanges RenderedPreviews::activeRanges() const {
    SourceRanges ranges;
    if (!showsFlow()) return ranges;
    const Current now = current();
    for (const RenderedPreview& preview : renderedPreviews())
        if (now.fits(preview)) ranges.push_back(preview.timeMap.sourceRange());
    return ranges;
}

SourceRanges RenderedPreviews::unrenderedRanges() const {
    if (!session_.clip()) return {};
    return PreviewRanges::unrendered(output(), flowRanges(), activeRanges());
}

void RenderedPreviews::install(RenderedPreview preview) {
    removeInvalid(); // a part of what is stale must not pass for current
    trimCachedPreviews(preview.timeMap.sourceRange());
    std::vector<RenderedPreview> previews = renderedPreviews();
    previews.push_back(std::move(preview));
    std::sort(previews.begin(), previews.end(), [](const RenderedPreview& a, const RenderedPreview& b) {
        return a.timeMap.sourceRange().lower < b.timeMap.sourceRange().lower;
    });
    set(std::move(previews));
}

void RenderedPreviews::trimCachedPreviews(const SourceRange& around) {
    const Current now = current();
    std::vector<RenderedPreview> kept;
    for (const RenderedPreview& preview : renderedPreviews()) {
        const SourceRange range = preview.timeMap.sourceRange();
        if (!(range.lower < around.upper && around.lower < range.upper)) {
            kept.push_back(preview);
            continue;
        }
        const SourceRanges pieces = PreviewRanges::outside(range, around);
        if (pieces.empty()) continue;
        const auto length = [](const SourceRange& piece) { return piece.upper - piece.lower; };
        const bool isLaterLonger = length(pieces.back()) > length(pieces.front()) + shortestPieceSeconds;
        const SourceRange& piece = isLaterLonger ? pieces.back() : pieces.front();
        RenderedPreview& part = kept.emplace_back(preview);
        part.fileStart += preview.timeMap.outputTime({piece.lower}).value;
        part.timeMap = preview.timeMap.sliced(piece);
        part.signature = now.signature(piece);
    }
    set(std::move(kept));
}

bool RenderedPreviews::removeInvalid() {
    std::vector<RenderedPreview> kept = renderedPreviews();
    const auto removed =
        std::erase_if(kept, [now = current()](const RenderedPreview& preview) { return !now.fits(preview); });
    if (removed > 0) set(std::move(kept));
    return removed > 0;
}

void RenderedPreviews::clear() {
    set({});
}

void RenderedPreviews::set(std::vector<RenderedPreview> previews) {
    std::set<std::filesystem::path> stay;
    for (const RenderedPreview& preview : previews)
        stay.insert(preview.url);
    const std::vector<RenderedPreview> before = renderedPreviews();
    if (!renderedPreviews_.set(std::move(previews))) return;
    ++previewCacheRevision_;
    for (const RenderedPreview& preview : before)
        if (!stay.contains(preview.url)) retiredPreviewURLs_.push_back({preview.url, previewCacheRevision_});
}

std::vector<std::filesystem::path> RenderedPreviews::takeRetired(int installedRevision) {
    std::vector<std::filesystem::path> unused;
    std::erase_if(retiredPreviewURLs_, [&](const Retired& retired) {
        if (retired.revision > installedRevision) return false;
        unused.push_back(retired.url);
        return true;
    });
    return unused;
}

} // namespace flowtide
