// Follows a subject that the user has boxed, and turns its way into framing.
#pragma once

#include "editor/edits/framing_edits.h"
#include "editor/jobs/cancel_flag.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"

#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// Selecting a subject, following it, finished. Main thread only.
class TrackingJob {
public:
    /// `undoKeys`: how the keys for undo are called in the closing sentence, as "Ctrl+Z".
    TrackingJob(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, FramingEdits& framing,
                std::shared_ptr<SessionMedia> media, std::string undoKeys);

    bool selectingSubject() const { return selectingSubject_.get(); }
    /// The frame at the playhead to draw the box on; null until it is decoded.
    const std::shared_ptr<const DisplayFrame>& subjectSelectionBuffer() const { return subjectSelectionBuffer_.get(); }
    bool isTracking() const { return isTracking_.get(); }
    double trackingProgress() const { return trackingProgress_.get(); } ///< 0...1
    /// The frame that was looked at last while the subject is followed; else null.
    const std::shared_ptr<const SubjectView>& trackingPreview() const { return trackingPreview_.get(); }
    /// What is covered so far while the subject is followed.
    const SourceRanges& trackingCoverage() const { return trackingCoverage_.get(); }
    /// The frame from which the subject is being followed, and what was drawn on it; else null.
    const std::shared_ptr<const SubjectView>& chosenSubject() const { return chosenSubject_.get(); }
    const std::optional<std::string>& trackingMessage() const { return trackingMessage_.get(); }
    /// The last tracked frame before a loss that ended the tracking, source seconds.
    const std::optional<double>& trackingStoppedAt() const { return trackingStoppedAt_.get(); }

    /// Playback pauses; the user draws a box on the frame at the playhead, as soon as it is there.
    void beginSubjectSelection();
    /// Follows the box through the kept part of the clip, both ways from the playhead's frame.
    void startTracking(const SubjectBox& box);
    /// Ends selecting or following; nothing is applied.
    void cancelTracking();
    void dismissMessage() { trackingMessage_.set({}); }

private:
    /// What must still be there for a result to be applied.
    struct Basis {
        OpenClip clip;
        SpeedKeyframes centerKeyframes;
        CropAspectRatio aspectRatio;
        friend bool operator==(const Basis&, const Basis&) = default;
    };
    Basis basis() const;
    /// The playhead within the kept part, which its fraction of the clip can miss by a rounding.
    SourceSeconds chosenTime() const;
    void receiveFrame(Outcome<SourceFrame>& outcome);
    void receiveProgress(const TrackingProgress& progress);
    void stopFollowing();
    void finish(Outcome<SubjectTrackResult>& outcome, const Basis& before);

    EditSession& session_;
    SessionJobs& jobs_;
    FramingEdits& framing_;
    std::shared_ptr<SessionMedia> media_;
    std::string undoKeys_;
    Observed<bool> selectingSubject_;
    Observed<std::shared_ptr<const DisplayFrame>> subjectSelectionBuffer_;
    Observed<bool> isTracking_;
    Observed<double> trackingProgress_;
    Observed<std::shared_ptr<const SubjectView>> trackingPreview_;
    Observed<SourceRanges> trackingCoverage_;
    Observed<std::shared_ptr<const SubjectView>> chosenSubject_;
    Observed<std::optional<std::string>> trackingMessage_;
    Observed<std::optional<double>> trackingStoppedAt_;
    SubjectTrackResult soFar_;     ///< its samples
    std::uint64_t trackingID_ = 0; ///< a result of another one is late
    CancelFlag cancelFlag_;
};

} // namespace flowtide
