// Exports the open clip as it is edited.
#pragma once

#include "editor/edit_session.h"
#include "editor/jobs/cancel_flag.h"
#include "editor/jobs/session_jobs.h"
#include "editor/jobs/session_media.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace flowtide {

/// How an export ended.
struct ExportEnd {
    enum class Kind { verified, cancelled, failed };
    Kind kind = Kind::verified;
    std::shared_ptr<const ExportValidationReport> report; ///< of one that was verified
    std::string failure;                                  ///< the sentence, of one that failed
};

/// One export at a time, of the edits as they were when it began. Main thread only.
class ExportJob {
public:
    ExportJob(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, std::shared_ptr<SessionMedia> media);

    bool isExporting() const { return isExporting_.get(); }
    double exportProgress() const { return exportProgress_.get(); } ///< 0...1; 1: rendered, being verified
    /// Seconds; nothing before there is something to go by.
    std::optional<double> exportEstimatedRemainingTime() const { return remainingTime_.get(); }
    /// Of the open clip's last export.
    const std::shared_ptr<const ExportValidationReport>& lastExportVerification() const { return report_.get(); }

    /// Where the export that runs, or ran last, writes to.
    const std::filesystem::path& destination() const { return destination_; }
    /// How many frames that one has.
    std::int64_t frameCount() const { return frameCount_; }
    /// How the last one ended; nothing while one runs, and once dismissed.
    const std::shared_ptr<const ExportEnd>& lastExportEnd() const { return end_.get(); }
    void dismissEnd() { end_.set(nullptr); }

    /// Nothing happens without a clip, or while an export runs.
    void start(const std::filesystem::path& destination);
    /// One that waits for another job ends at once.
    void cancel();
    /// The report is of another clip from now on.
    void forgetVerification() { report_.set(nullptr); }

private:
    void receiveProgress(double fraction);
    void finish(Outcome<ExportValidationReport>& outcome, const OpenClip& clip);
    void finish(ExportEnd end);

    EditSession& session_;
    SessionJobs& jobs_;
    std::shared_ptr<SessionMedia> media_;
    Observed<bool> isExporting_;
    Observed<double> exportProgress_;
    Observed<std::optional<double>> remainingTime_;
    Observed<std::shared_ptr<const ExportValidationReport>> report_;
    Observed<std::shared_ptr<const ExportEnd>> end_;
    std::filesystem::path destination_;
    std::int64_t frameCount_ = 0;
    double startedAt_ = 0;       ///< Scheduler::now() when the job began
    std::uint64_t exportID_ = 0; ///< the outcome of another one is late
    CancelFlag cancelFlag_;
};

} // namespace flowtide
