// Follows everything that decides what an export shows at the playhead.
#include "editor/preview/rest_frame.h"

#include <exception>
#include <utility>

namespace flowtide {

RestFrame::RestFrame(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                     std::shared_ptr<SessionMedia> media, const RenderAhead& renders, const Transport& transport)
    : session_(session)
    , jobs_(jobs)
    , media_(std::move(media))
    , renders_(renders)
    , transport_(transport)
    , restPicture_(notifier, Property::restPicture)
    , changes_(notifier.subscribe(
          properties({Property::clip, Property::keyframes, Property::curveSmoothing, Property::trimRange,
                      Property::zoomBlocks, Property::isVerticalCropEnabled, Property::frameInterpolation,
                      Property::opticalFlowRanges, Property::originalFrameSpans, Property::scrubPosition,
                      Property::isPlaying, Property::isStartingPlayback, Property::renderedPreviews}),
          [this](const PropertySet&) { restart(); })) {}

void RestFrame::setRestPictureSize(OutputSize size) {
    if (size == size_) return;
    size_ = size;
    restart();
}

bool RestFrame::isWanted() const {
    if (!session_.clip() || transport_.isPlaying() || transport_.isStartingPlayback()) return false;
    const SourceSeconds playhead{session_.playheadSeconds()};
    return OpticalFlowScope::contains(renders_.previews().flowRanges(), playhead) &&
           !renders_.previews().isShownAt(playhead);
}

void RestFrame::restart() {
    ++requestID_;
    cancelFlag_.raise();
    restPicture_.set(nullptr);
    rest_ = isWanted() ? Timer(jobs_.scheduler(), jobs_.scheduler().after(restDelaySeconds, [this] { request(); }))
                       : Timer();
}

void RestFrame::request() {
    ExportRequest request = session_.exportRequest();
    // The view draws the crop over the whole picture, and zooms within it, which comes after it.
    if (request.verticalCrop) request.zoom.reset();
    request.verticalCrop.reset();
    const CancelCheck isCancelled = cancelFlag_.renewed();
    jobs_.start(
        BackgroundQueue::frames,
        [media = media_, request = std::move(request), size = size_, isCancelled,
         time = session_.curve.timeMap().outputTime({session_.playheadSeconds()})] {
            return media->exportPicture(request, time, size, isCancelled);
        },
        [this, id = requestID_](Outcome<ExportPicture>& outcome) {
            if (id != requestID_) return;
            try {
                if (outcome.get().isInBetween)
                    restPicture_.set(std::make_shared<const ExportPicture>(std::move(outcome.get())));
            } catch (const std::exception&) {
                // The source's own frame stays; whatever is wrong, the export will say.
            }
        });
}

} // namespace flowtide
