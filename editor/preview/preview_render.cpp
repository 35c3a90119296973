// From a range to an installed preview.
#include "editor/preview/preview_render.h"

#include <utility>

namespace flowtide {

PreviewRender::PreviewRender(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                             std::shared_ptr<SessionMedia> media, RenderedPreviews& previews,
                             std::function<void(End)> onEnd)
    : session_(session)
    , jobs_(jobs)
    , media_(std::move(media))
    , previews_(previews)
    , onEnd_(std::move(onEnd))
    , renderingPreviewRange_(notifier, Property::renderingPreviewRange)
    , isAutomatic_(notifier, Property::isAutomaticPreviewRender)
    , progress_(notifier, Property::previewRenderProgress)
    , error_(notifier, Property::previewRenderError) {}

ExportRequest PreviewRender::request(const WholeFrames& frames) const {
    const TimeMap& timeMap = session_.curve.timeMap();
    ExportRequest request = session_.exportRequest();
    request.clip.audio.reset();   // the player retimes the sound itself
    request.verticalCrop.reset(); // the view draws it over the whole picture
    request.sourceRange = frames.range;
    request.previewTimeMap = timeMap.sliced(frames.range);
    request.previewOf = WholeOutput{timeMap, frames.firstFrame};
    request.previewResolution = session_.timeline.previewResolution();
    return request;
}

bool PreviewRender::canStart(const SourceRange& range) const {
    return session_.clip() && !isRendering() && PreviewRanges::isCovered(range, previews_.flowRanges());
}

void PreviewRender::start(const SourceRange& range, bool automatically) {
    if (!canStart(range)) return;
    const RetimedOutput output = previews_.output();
    const WholeFrames frames = PreviewRanges::widenedToFrames(output, range);
    const Uuid id = Uuid::random();
    RenderedPreview preview{.id = id,
                            .url = {},
                            .timeMap = output.timeMap.sliced(range),
                            .fileStart = frames.leadSeconds,
                            .signature = previews_.previewSignature(range),
                            .resolution = session_.timeline.previewResolution()};
    previewRenderID_ = id;
    renderingPreviewRange_.set(range);
    renderingSignature_ = preview.signature;
    isAutomatic_.set(automatically);
    progress_.set(0);
    error_.set({});
    const auto onProgress = jobs_.home<double>([this, id](double fraction) {
        if (previewRenderID_ == id) progress_.set(fraction);
    });
    const CancelCheck isCancelled = cancelFlag_.renewed();
    jobs_.start(
        BackgroundQueue::renders,
        [media = media_, id, request = request(frames), onProgress, isCancelled] {
            return media->renderPreview(id, request, onProgress, isCancelled);
        },
        [this, preview = std::move(preview)](Outcome<std::filesystem::path>& outcome) { receive(outcome, preview); });
}

void PreviewRender::receive(Outcome<std::filesystem::path>& outcome, RenderedPreview preview) {
    const bool isLate = previewRenderID_ != preview.id;
    try {
        preview.url = outcome.get();
    } catch (const std::exception& error) {
        if (isLate) return;
        const auto failure = failureToShow(error);
        if (failure) error_.set(failure);
        return end(failure ? End::failed : End::cancelled);
    }
    const bool isWanted = !isLate && previews_.isValid(preview.timeMap.sourceRange(), preview.signature);
    if (!isWanted) media_->removePreview(preview.url);
    if (isWanted) previews_.install(std::move(preview));
    if (!isLate) end(isWanted ? End::installed : End::outdated);
}

bool PreviewRender::cancelIfOutdated() {
    if (!isRendering() || previews_.isValid(*renderingPreviewRange(), *renderingSignature_)) return false;
    end(End::outdated);
    return true;
}

void PreviewRender::end(End how) {
    if (!isRendering()) return;
    cancelFlag_.raise();
    previewRenderID_.reset();
    renderingPreviewRange_.set({});
    renderingSignature_.reset();
    isAutomatic_.set(false);
    onEnd_(how);
}

} // namespace flowtide
