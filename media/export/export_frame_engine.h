// Single pictures of an export, to be looked at before there is one.
#pragma once

#include "media/cancel_check.h"
#include "media/export/export_request.h"
#include "media/frames/display_frame.h"
#include "media/frames/frame_interpolation.h"
#include "media/frames/frames_around.h"
#include "media/media_io.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace flowtide {

/// One picture of an export, before it is encoded.
struct ExportFrame {
    VideoFrame frame;
    std::int64_t index = 0; ///< which of the output's frames it is
    SourceSeconds sourceTime;
    bool isInBetween = false; ///< made, and none of the source's own
};

/// The same for a display: upright, in its pixels.
struct ExportPicture {
    DisplayFrame picture;
    OutputSeconds time; ///< from which the export shows it
    SourceSeconds sourceTime;
    bool isInBetween = false;
};

/// Draws what an export would contain, by the same steps and from the same neighbours, so that the pixels are the same.
/// Keeps the renderer, the display's tables and the clip's decoder from call to call. One thread at a time. The backend
/// must outlive it.
class ExportFrameEngine {
public:
    explicit ExportFrameEngine(const MediaBackend& backend)
        : backend_(backend) {}

    /// The frame that is shown at an output time; times outside the output count as its ends. Throws what planning the
    /// export throws, FlowtideError::readerFailed (also for a source without frames), and exportCancelled.
    ExportFrame frame(const ExportRequest& request, OutputSeconds time, const CancelCheck& isCancelled = {});

    /// The same, drawn to fit into `maximumSize`, never larger than it is.
    ExportPicture picture(const ExportRequest& request, OutputSeconds time, OutputSize maximumSize,
                          const CancelCheck& isCancelled = {});

    /// What is read next is another file, even if it has the same name.
    void closeClip() { around_.reset(); }

private:
    FramesAround& framesOf(const ImportedClip& clip, PixelLayout layout);
    FrameInterpolating& rendererFor(int width, int height, PixelLayout layout);

    const MediaBackend& backend_;
    std::unique_ptr<FramesAround> around_;
    std::unique_ptr<FrameInterpolating> renderer_;
    int width_ = 0; ///< what the renderer is for
    int height_ = 0;
    PixelLayout layout_;
    DisplayConverter converter_;
};

} // namespace flowtide
