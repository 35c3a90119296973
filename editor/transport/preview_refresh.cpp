// From the session's edits to the player's item.
#include "editor/transport/preview_refresh.h"

#include "media/failure_sentence.h"
#include "media/preview/retimed_composition_engine.h"

#include <cmath>
#include <utility>

namespace flowtide {

PreviewRefresh::PreviewRefresh(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, SessionPlayer& player,
                               std::shared_ptr<SessionMedia> media, RenderAhead& renders,
                               std::function<std::optional<std::filesystem::path>()> proxy)
    : session_(session)
    , scheduler_(jobs.scheduler())
    , player_(player)
    , renders_(renders)
    , proxy_(std::move(proxy))
    , sound_(jobs, notifier, std::move(media),
             {[this] { changeItem([this](PlaybackItem& item) { item.sound = sound_.sound(); }); },
              [this](const std::string& failure) { renders_.showPreviewError(failure); }}) {}

void PreviewRefresh::schedulePreviewRefreshAfterEdit() {
    const std::uint64_t generation = previewRefreshGeneration_;
    previewRefreshTask_ = Timer(scheduler_, scheduler_.after(delaySeconds, [this, generation] {
        if (generation == previewRefreshGeneration_) refreshPreviewForCurrentCurve();
    }));
}

void PreviewRefresh::refreshPreviewForCurrentCurve() {
    previewRefreshTask_.cancel();
    if (!session_.clip()) return;
    try {
        installed_ = Installed{session_.curve.keyframes(), session_.curve.smoothing(), session_.curve.trimRange(),
                               renders_.previews().previewCacheRevision(), built()};
    } catch (const std::exception& error) {
        removeItem();
        renders_.showPreviewError(sentenceFor(error));
        return;
    }
    player_.setItem(installed_->item);
    renders_.playerInstalled(installed_->installedCacheRevision);
    if (player_.requestedRate() == 0) player_.seek(installedMap().outputTime({session_.playheadSeconds()}), {});
}

std::shared_ptr<PlaybackItem> PreviewRefresh::built() const {
    RetimedCompositionRequest request;
    request.clip = session_.clip();
    request.keyframes = playedCurve(session_.curve.keyframes(), session_.curve.trimRange(), session_.curve.domain());
    request.sourceRange = session_.curve.trimRange();
    request.smoothing = session_.curve.smoothing();
    request.segmentRate = segmentRate;
    request.maximumSegmentCount = session_.curve.isIdentity() ? 1 : mostSegments;
    request.includeAudio = false; // the player retimes the decoded sound itself
    request.cachedPreviews = renders_.previews().activeCachedPreviews();
    auto item = std::make_shared<PlaybackItem>();
    item->media = RetimedCompositionEngine::build(request);
    item->proxy = proxyMedium();
    item->sound = sound_.sound();
    return item;
}

std::optional<CompositionMedium> PreviewRefresh::proxyMedium() const {
    const auto proxy = proxy_();
    if (!proxy) return std::nullopt;
    return CompositionMedium{*proxy, 0, nullptr};
}

bool PreviewRefresh::needsRefresh() const {
    return !installed_ || installed_->previewKeyframes != session_.curve.keyframes() ||
           std::abs(installed_->previewCurveSmoothing - session_.curve.smoothing()) > smoothingTolerance ||
           installed_->previewSourceRange != session_.curve.trimRange() ||
           installed_->installedCacheRevision != renders_.previews().previewCacheRevision();
}

/// The curve of the item stays, whatever the session's is by now.
template <typename Change>
void PreviewRefresh::changeItem(Change change) {
    if (!installed_) return;
    auto item = std::make_shared<PlaybackItem>(*installed_->item);
    change(*item);
    installed_->item = item;
    player_.setItem(std::move(item));
}

void PreviewRefresh::showProxy() {
    changeItem([this](PlaybackItem& item) { item.proxy = proxyMedium(); });
}

void PreviewRefresh::removeItem() {
    installed_.reset();
    player_.setItem(nullptr);
    renders_.playerInstalled(renders_.previews().previewCacheRevision());
}

void PreviewRefresh::reset() {
    beginPreviewOperation();
    previewRefreshTask_.cancel();
    removeItem();
    sound_.load(session_.clip());
    refreshPreviewForCurrentCurve();
}

} // namespace flowtide
