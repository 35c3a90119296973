// From the session's edits to a verified file.
#include "editor/jobs/export_job.h"

#include "media/media_time.h"

#include <utility>

namespace flowtide {

namespace {
/// Below this share an estimate says more about the start than about the rest.
constexpr double leastShareForEstimate = 0.02;
} // namespace

ExportJob::ExportJob(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                     std::shared_ptr<SessionMedia> media)
    : session_(session)
    , jobs_(jobs)
    , media_(std::move(media))
    , isExporting_(notifier, Property::isExporting)
    , exportProgress_(notifier, Property::exportProgress)
    , remainingTime_(notifier, Property::exportEstimatedRemainingTime)
    , report_(notifier, Property::lastExportVerification)
    , end_(notifier, Property::lastExportEnd) {}

void ExportJob::start(const std::filesystem::path& destination) {
    if (!session_.clip() || isExporting()) return;
    isExporting_.set(true);
    exportProgress_.set(0);
    remainingTime_.set({});
    report_.set(nullptr);
    end_.set(nullptr);
    destination_ = destination;
    frameCount_ = outputFrameCount(session_.curve.timeMap().outputDuration(), session_.clip()->frameDuration);
    ExportRequest request = session_.exportRequest();
    request.outputURL = destination;
    const auto onProgress = jobs_.home<double>([this](double fraction) { receiveProgress(fraction); });
    const auto onBegin = jobs_.home<Nothing>([this](Nothing) { startedAt_ = jobs_.scheduler().now(); });
    jobs_.start(
        BackgroundQueue::jobs,
        [media = media_, request = std::move(request), onBegin, onProgress, isCancelled = cancelFlag_.renewed()] {
            throwIfCancelled(isCancelled);
            onBegin({});
            return media->exportClip(request, onProgress, isCancelled);
        },
        [this, id = ++exportID_, clip = session_.clip()](Outcome<ExportValidationReport>& outcome) {
            if (id == exportID_) finish(outcome, clip);
        });
}

void ExportJob::cancel() {
    if (!cancelFlag_.raise()) return;
    ++exportID_;
    finish({ExportEnd::Kind::cancelled, {}, {}});
}

void ExportJob::receiveProgress(double fraction) {
    if (!isExporting()) return;
    exportProgress_.set(fraction);
    const double elapsed = jobs_.scheduler().now() - startedAt_;
    if (fraction >= leastShareForEstimate) remainingTime_.set(elapsed * (1 - fraction) / fraction);
}

void ExportJob::finish(Outcome<ExportValidationReport>& outcome, const OpenClip& clip) {
    ExportEnd end;
    try {
        end.report = std::make_shared<const ExportValidationReport>(outcome.get());
        if (clip == session_.clip()) report_.set(end.report);
    } catch (const std::exception& error) {
        const auto failure = failureToShow(error);
        end.kind = failure ? ExportEnd::Kind::failed : ExportEnd::Kind::cancelled;
        end.failure = failure.value_or(std::string());
    }
    finish(std::move(end));
}

void ExportJob::finish(ExportEnd end) {
    isExporting_.set(false);
    remainingTime_.set({});
    end_.set(std::make_shared<const ExportEnd>(std::move(end)));
    session_.preview().scheduleSmartPreview();
}

} // namespace flowtide
