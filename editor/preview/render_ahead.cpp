// The three occasions of a render, and what each end of one leads to.
#include "editor/preview/render_ahead.h"

#include "core/clamp.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

namespace flowtide {

RenderAhead::RenderAhead(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                         std::shared_ptr<SessionMedia> media, RenderAheadHost host)
    : session_(session)
    , jobs_(jobs)
    , media_(std::move(media))
    , host_(std::move(host))
    , previews_(session, notifier)
    , render_(session, jobs, notifier, media_, previews_, [this](PreviewRender::End how) { renderEnded(how); })
    , isRenderingAllRanges_(notifier, Property::isRenderingAllRanges)
    , renderAllSeconds_(notifier, Property::renderAllProgress) {}

double RenderAhead::renderAllProgress() const {
    const RenderAllSeconds& seconds = renderAllSeconds_.get();
    if (!(seconds.total > 0)) return 0;
    return clamped((seconds.done + seconds.current * render_.previewRenderProgress()) / seconds.total, 0, 1);
}

std::string RenderAhead::renderAllLabel() const {
    if (isRenderingAllRanges())
        return fmt::format("Rendering all ranges {}%", static_cast<int>(std::floor(100 * renderAllProgress())));
    const bool isAllRendered =
        session_.clip() && !previews_.flowRanges().empty() && previews_.unrenderedRanges().empty();
    return isAllRendered ? "All ranges rendered" : "Render all ranges";
}

std::optional<std::string> RenderAhead::playheadLabel() const {
    if (!session_.clip()) return std::nullopt;
    const SourceSeconds playhead{session_.playheadSeconds()};
    if (!OpticalFlowScope::contains(previews_.flowRanges(), playhead)) {
        if (previews_.renderedPreviews().empty()) return "No rendered previews";
        return std::nullopt;
    }
    if (previews_.isShownAt(playhead)) return "Preview rendered";
    return render_.isRendering() ? "Preview rendering" : "Preview not rendered";
}

std::optional<SourceRange> RenderAhead::selectedPreviewRange() const {
    const auto& selected = session_.flow.selectedOpticalFlowRangeID();
    const OpticalFlowRange* range = selected ? session_.flow.range(*selected) : nullptr;
    if (!range) return std::nullopt;
    const SourceRanges kept = OpticalFlowScope::normalized({{range->start, range->end}}, session_.curve.trimRange());
    return kept.empty() ? std::nullopt : std::optional(kept.front());
}

std::optional<SourceRange> RenderAhead::automaticPreviewRange() const {
    if (!session_.clip()) return std::nullopt;
    return PreviewRanges::automatic(previews_.output(), previews_.flowRanges(), previews_.activeRanges(),
                                    {session_.playheadSeconds()});
}

void RenderAhead::renderSelectedPreview(bool automatically, std::optional<SourceRange> range, bool pausesPlayback) {
    if (!range) range = selectedPreviewRange();
    if (!range && automatically) range = automaticPreviewRange();
    if (!range || !render_.canStart(*range)) return;
    if (pausesPlayback) host_.pausePlayback();
    render_.start(*range, automatically);
}

void RenderAhead::renderAllRanges() {
    if (!session_.clip() || isRenderingAllRanges()) return;
    host_.pausePlayback();
    isRenderingAllRanges_.set(true);
    RenderAllSeconds seconds;
    for (const SourceRange& range : previews_.unrenderedRanges())
        seconds.total += PreviewRanges::outputLength(range, session_.curve.timeMap());
    renderAllSeconds_.set(seconds);
    renderNextRange();
}

void RenderAhead::renderNextRange() {
    // During a gesture every movement would end what has just begun; its end calls again, as does a render's.
    if (!isRenderingAllRanges() || render_.isRendering() || isGestureOpen()) return;
    const SourceRanges unrendered = previews_.unrenderedRanges();
    if (unrendered.empty()) return stopRenderingAll();
    const TimeMap& timeMap = session_.curve.timeMap();
    const SourceRange& next = unrendered.front();
    const SourceRange chunk = PreviewRanges::narrowed(timeMap, next, timeMap.outputTime({next.lower}));
    if (chunk == renderAllLastChunk_) return stopRenderingAll(); // it has failed
    renderAllLastChunk_ = chunk;
    RenderAllSeconds seconds = renderAllSeconds_.get();
    seconds.current = PreviewRanges::outputLength(chunk, timeMap);
    renderAllSeconds_.set(seconds);
    renderSelectedPreview(false, chunk);
}

void RenderAhead::renderNextRangeSoon() {
    jobs_.home<Nothing>([this](Nothing) { renderNextRange(); })({});
}

void RenderAhead::stopRenderingAll() {
    if (!isRenderingAllRanges()) return;
    const bool isRenderingChunk = renderAllSeconds_.get().current > 0;
    isRenderingAllRanges_.set(false);
    renderAllSeconds_.set({});
    renderAllLastChunk_.reset();
    if (isRenderingChunk) render_.cancel();
    scheduleSmartPreview();
}

void RenderAhead::renderEnded(PreviewRender::End how) {
    RenderAllSeconds seconds = renderAllSeconds_.get();
    if (how == PreviewRender::End::installed) seconds.done += seconds.current;
    seconds.current = 0;
    renderAllSeconds_.set(seconds);
    if (how == PreviewRender::End::outdated) renderAllLastChunk_.reset(); // not its fault
    if (how == PreviewRender::End::installed) host_.showRenderedPreviews();
    if (isRenderingAllRanges())
        renderNextRangeSoon();
    else if (how != PreviewRender::End::failed) // which would only fail again, every second
        scheduleSmartPreview();
}

void RenderAhead::clearPreviewCache() {
    if (!session_.clip()) return;
    stopRenderingAll();
    render_.cancel();
    previews_.clear();
    session_.preview().beginPreviewOperation();
    host_.showRenderedPreviews();
    scheduleSmartPreview();
}

bool RenderAhead::isGestureOpen() const {
    const auto& pending = session_.history.pendingUndoSnapshot();
    return pending && *pending != session_.currentSnapshot();
}

void RenderAhead::scheduleSmartPreview() {
    smartPreviewTask_.cancel();
    if (isRenderingAllRanges()) renderNextRangeSoon();
    if (!session_.timeline.smartPreviewEnabled() || !session_.clip() || session_.isRestoringProject()) return;
    Scheduler& scheduler = jobs_.scheduler();
    smartPreviewTask_ = Timer(scheduler, scheduler.after(idleDelaySeconds, [this] { renderIfIdle(); }));
}

void RenderAhead::renderIfIdle() {
    const bool isWanted = session_.clip() && session_.timeline.smartPreviewEnabled();
    if (!isWanted || host_.isBusy() || render_.isRendering() || isRenderingAllRanges() || isGestureOpen()) return;
    if (const auto range = automaticPreviewRange()) renderSelectedPreview(true, range, false);
}

void RenderAhead::cancelAutomaticRender() {
    if (render_.isAutomaticPreviewRender()) render_.cancel();
    smartPreviewTask_.cancel();
}

void RenderAhead::invalidateEditedPreviews() {
    if (!session_.clip()) return;
    const bool isRemoved = previews_.removeInvalid();
    const bool isCancelled = render_.cancelIfOutdated();
    if (isRemoved || isCancelled) host_.pausePlayback();
}

void RenderAhead::reset() {
    stopRenderingAll();
    render_.cancel();
    smartPreviewTask_.cancel();
    previews_.clear();
    render_.setError({});
}

void RenderAhead::playerInstalled(int previewCacheRevision) {
    for (const std::filesystem::path& file : previews_.takeRetired(previewCacheRevision))
        media_->removePreview(file);
}

} // namespace flowtide
