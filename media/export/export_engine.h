// Renders a retimed copy of one clip, verifies it against its source, and only then puts it in place.
#pragma once

#include "media/cancel_check.h"
#include "media/export/export_request.h"
#include "media/export/export_validation.h"
#include "media/frames/frame_interpolation.h"
#include "media/log.h"

#include <functional>
#include <mutex>

namespace flowtide {

class MediaBackend;
class TemporaryExport;
struct ExportPlan;

using PlanHandler = std::function<void(const ExportPlan&)>;

/// Runs one export. cancel() may be called from any thread; everything else belongs to the exporting thread.
class ExportEngine {
public:
    /// `isCancelled` is asked as often as cancel() is looked for, from any thread.
    ExportEngine(const MediaBackend& backend, LogSink log, CancelCheck isCancelled = {});

    /// Blocks until the destination holds the verified file. Throws FlowtideError (ProjectError when source and
    /// destination are the same file); the destination is then byte for byte what it was and no temporary file is
    /// left.
    /// `onPlanned` is called once with what was decided, before anything is written.
    ExportValidationReport run(const ExportRequest& wanted, const ProgressHandler& onProgress,
                               const PlanHandler& onPlanned = {});

    /// Makes run() stop at the next frame or chunk and throw FlowtideError::exportCancelled.
    void cancel();

private:
    bool isCancelled() const;
    void render(const ExportRequest& request, const ExportPlan& plan, FrameInterpolating* renderer,
                TemporaryExport& file, const ProgressHandler& onProgress);

    const MediaBackend& backend_;
    LogSink log_;
    CancelCheck cancelCheck_;
    mutable std::mutex cancelLock_; ///< guards isCancelled_
    bool isCancelled_ = false;
};

} // namespace flowtide
