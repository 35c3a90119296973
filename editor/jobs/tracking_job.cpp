// The course of a tracking.
#include "editor/jobs/tracking_job.h"

#include "core/clamp.h"
#include "media/tracking/tracking_messages.h"

#include <utility>

namespace flowtide {

namespace {
/// What selecting is done on: small features can be told apart, and a picture takes no more than 8 MB.
constexpr OutputSize largestSelectionFrame{1920, 1920};
} // namespace

TrackingJob::TrackingJob(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, FramingEdits& framing,
                         std::shared_ptr<SessionMedia> media, std::string undoKeys)
    : session_(session)
    , jobs_(jobs)
    , framing_(framing)
    , media_(std::move(media))
    , undoKeys_(std::move(undoKeys))
    , selectingSubject_(notifier, Property::selectingSubject)
    , subjectSelectionBuffer_(notifier, Property::subjectSelectionBuffer)
    , isTracking_(notifier, Property::isTracking)
    , trackingProgress_(notifier, Property::trackingProgress)
    , trackingPreview_(notifier, Property::trackingPreview)
    , trackingCoverage_(notifier, Property::trackingCoverage)
    , chosenSubject_(notifier, Property::chosenSubject)
    , trackingMessage_(notifier, Property::trackingMessage)
    , trackingStoppedAt_(notifier, Property::trackingStoppedAt) {}

void TrackingJob::beginSubjectSelection() {
    if (!session_.clip() || isTracking()) return;
    session_.preview().pausePlayback();
    session_.preview().cancelAutomaticRender();
    selectingSubject_.set(true);
    subjectSelectionBuffer_.set(nullptr);
    trackingStoppedAt_.set({});
    trackingMessage_.set("Loading the source frame…");
    jobs_.start(
        BackgroundQueue::frames,
        [media = media_, clip = session_.clip(), time = chosenTime()] {
            return media->sourceFrame(clip, time, largestSelectionFrame);
        },
        [this, id = ++trackingID_](Outcome<SourceFrame>& outcome) {
            if (id == trackingID_) receiveFrame(outcome);
        });
}

void TrackingJob::receiveFrame(Outcome<SourceFrame>& outcome) {
    try {
        subjectSelectionBuffer_.set(std::make_shared<const DisplayFrame>(std::move(outcome.get().picture)));
        trackingMessage_.set("Draw a tight box around the subject (torso for a player). Tracking follows it in both "
                             "directions.");
    } catch (const std::exception& error) {
        selectingSubject_.set(false);
        trackingMessage_.set(failureToShow(error));
    }
}

void TrackingJob::startTracking(const SubjectBox& box) {
    if (!session_.clip() || isTracking()) return;
    SubjectView chosen{chosenTime().value, box, {}};
    if (subjectSelectionBuffer()) chosen.picture = *subjectSelectionBuffer();
    chosenSubject_.set(std::make_shared<const SubjectView>(std::move(chosen)));
    trackingPreview_.set(chosenSubject());
    soFar_ = {};
    selectingSubject_.set(false);
    subjectSelectionBuffer_.set(nullptr);
    isTracking_.set(true);
    trackingProgress_.set(0);
    trackingStoppedAt_.set({});
    trackingMessage_.set("Following the subject…");
    const std::uint64_t id = ++trackingID_;
    const auto onProgress = jobs_.home<TrackingProgress>([this, id](const TrackingProgress& progress) {
        if (id == trackingID_ && isTracking()) receiveProgress(progress);
    });
    jobs_.start(
        BackgroundQueue::jobs,
        [media = media_, clip = session_.clip(), seed = chosenTime(), box, range = session_.curve.trimRange(),
         onProgress, isCancelled = cancelFlag_.renewed()] {
            return media->track(*clip, seed, box, range, onProgress, isCancelled);
        },
        [this, id, before = basis()](Outcome<SubjectTrackResult>& outcome) {
            session_.afterGesture(
                [this, id, before, kept = std::make_shared<Outcome<SubjectTrackResult>>(std::move(outcome))] {
                    if (id == trackingID_) finish(*kept, before);
                });
        });
}

void TrackingJob::receiveProgress(const TrackingProgress& progress) {
    trackingProgress_.set(progress.fraction);
    trackingMessage_.set(progress.isLooking ? "Looking for the subject…" : "Following the subject…");
    if (progress.view) trackingPreview_.set(progress.view);
    if (progress.samples.empty()) return;
    auto& samples = soFar_.samples; // each new one belongs at one of its ends
    for (const SubjectTrackResult::Sample& sample : progress.samples)
        samples.insert(!samples.empty() && sample.time < samples.front().time ? samples.begin() : samples.end(),
                       sample);
    SourceRanges covered;
    for (const SubjectTrackingRange& range :
         soFar_.trackedRanges(session_.clip()->frameDuration.seconds(), session_.curve.trimRange()))
        covered.push_back({range.start, range.end});
    trackingCoverage_.set(std::move(covered));
}

void TrackingJob::stopFollowing() {
    isTracking_.set(false);
    trackingPreview_.set(nullptr);
    trackingCoverage_.set({});
    chosenSubject_.set(nullptr);
}

void TrackingJob::cancelTracking() {
    ++trackingID_;
    cancelFlag_.raise();
    selectingSubject_.set(false);
    subjectSelectionBuffer_.set(nullptr);
    stopFollowing();
    trackingMessage_.set({});
    session_.preview().scheduleSmartPreview();
}

SourceSeconds TrackingJob::chosenTime() const {
    const SourceRange trim = session_.curve.trimRange();
    return {clamped(session_.playheadSeconds(), trim.lower, trim.upper)};
}

TrackingJob::Basis TrackingJob::basis() const {
    return {session_.clip(), session_.framing.centerKeyframes(), session_.framing.cropAspectRatio()};
}

void TrackingJob::finish(Outcome<SubjectTrackResult>& outcome, const Basis& before) {
    stopFollowing();
    try {
        const SubjectTrackResult& result = outcome.get();
        if (basis() != before) {
            trackingMessage_.set("Framing changed while tracking. Track again to keep your new edits.");
            return;
        }
        // What was drawn is what the user knew already.
        const auto count = tracking::isSeedAlone(result) ? 0 : framing_.applySubjectTrackingResult(result);
        if (!count) {
            trackingMessage_.set("There is no room for so many framing points. Remove some and track again.");
            return;
        }
        if (result.lostSubject && !result.samples.empty())
            trackingStoppedAt_.set(result.lostAfterSeed ? result.samples.back().time : result.samples.front().time);
        trackingMessage_.set(tracking::finishedMessage(result, *count, undoKeys_));
    } catch (const std::exception& error) {
        trackingMessage_.set(failureToShow(error));
    }
    session_.preview().scheduleSmartPreview();
}

} // namespace flowtide
