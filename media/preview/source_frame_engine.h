// Single frames of a clip, exactly as they are, to compare with on the screen.
#pragma once

#include "core/output_size.h"
#include "core/time.h"
#include "media/frames/display_frame.h"
#include "media/imported_clip.h"
#include "media/media_io.h"

#include <memory>
#include <optional>

namespace flowtide {

/// A picture and the time of the frame that it shows.
struct SourceFrame {
    DisplayFrame picture;
    SourceSeconds time;
};

/// Fetches frames of one clip, upright and in the display's pixels. One thread at a time. The backend must outlive it.
class SourceFrameEngine {
public:
    /// Frames are drawn to fit into `maximumSize`, never larger than they are.
    SourceFrameEngine(const MediaBackend& backend, std::shared_ptr<const ImportedClip> clip, OutputSize maximumSize);

    /// The frame shown at a source time, neither the one before nor the one after. Asked twice for the same time it
    /// decodes once. Throws FlowtideError::readerFailed.
    SourceFrame frame(SourceSeconds time);

private:
    struct Cached {
        SourceFrame frame;
        SourceSeconds asked;
    };

    const MediaBackend& backend_;
    std::shared_ptr<const ImportedClip> clip_;
    OutputSize size_;
    PictureColor color_;
    DisplayConverter converter_;
    std::optional<Cached> cached_;
};

} // namespace flowtide
