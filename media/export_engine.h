// Renders a retimed copy of one clip, verifies it against its source, and only then puts it in place.
#pragma once

#include "core/crop_framing.h"
#include "core/optical_flow_ranges.h"
#include "core/render_choices.h"
#include "core/speed_keyframe.h"
#include "core/time_map.h"
#include "core/zoom_block.h"
#include "media/frame_interpolation.h"
#include "media/imported_clip.h"
#include "media/log.h"

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace flowtide {

class MediaBackend;
class TemporaryExport;
struct ExportPlan;

/// What verification found on the written file.
struct ExportValidationReport {
    std::string summary; ///< the short items joined by " · "
    std::string details; ///< one line per property
};

/// One export, as the editor and the command line ask for it.
struct ExportRequest {
    ImportedClip clip;
    SpeedKeyframes keyframes;               ///< sorted by time
    std::optional<SourceRange> sourceRange; ///< absent: the whole clip
    double smoothing = 0.5;
    FrameInterpolation interpolation = FrameInterpolation::nearest;
    std::optional<SourceRanges> opticalFlowRanges; ///< source seconds
    std::optional<VerticalCropSettings> verticalCrop;
    std::optional<ZoomSettings> zoom;
    std::optional<TimeMap> previewTimeMap; ///< used instead of building one; its timing agrees with the whole clip's
    std::optional<PreviewResolution> previewResolution; ///< absent: the clip's own size
    std::filesystem::path outputURL;
};

/// Takes 0...1, called from the exporting thread; must not block. 1 means rendered, verification follows.
using ProgressHandler = std::function<void(double)>;

/// Runs one export. cancel() may be called from any thread; everything else belongs to the exporting thread.
class ExportEngine {
public:
    ExportEngine(const MediaBackend& backend, LogSink log);

    /// Blocks until the destination holds the verified file. Throws FlowtideError (ProjectError when source and
    /// destination are the same file); the destination is then byte for byte what it was and no temporary file is
    /// left.
    ExportValidationReport run(const ExportRequest& request, const ProgressHandler& onProgress);

    /// Makes run() stop at the next frame or chunk and throw FlowtideError::exportCancelled.
    void cancel();

private:
    bool isCancelled() const;
    void render(const ExportRequest& request, const ExportPlan& plan, FrameInterpolating* renderer,
                TemporaryExport& file, const ProgressHandler& onProgress);

    const MediaBackend& backend_;
    LogSink log_;
    mutable std::mutex cancelLock_; ///< guards isCancelled_
    bool isCancelled_ = false;
};

} // namespace flowtide
