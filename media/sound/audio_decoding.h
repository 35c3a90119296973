// Gathers the decoded sound of a range into one stretch: blocks at their times, silence in the gaps, within a limit.
#pragma once

#include "core/time.h"
#include "media/cancel_check.h"
#include "media/imported_clip.h"

#include <cstdint>
#include <vector>

namespace flowtide {

class MediaBackend;

/// Decoded sound, interleaved by channel. Sample frame i of `samples` is heard firstFrame + i sample frames after the
/// clip's start.
struct AudioData {
    std::vector<float> samples;
    double sampleRate = 0; ///< Hz
    std::int64_t channels = 0;
    std::int64_t firstFrame = 0;
    int damagedStretches = 0; ///< stretches that could not be decoded and are silent instead

    std::int64_t frameCount() const { return channels > 0 ? static_cast<std::int64_t>(samples.size()) / channels : 0; }
};

namespace AudioDecoding {

/// 512 MB of 32-bit floats; no export holds more.
constexpr std::int64_t largestSampleCount = 134'217'728;

/// Decodes the sound of a range of the clip. Throws FlowtideError::readerFailed, at once where the range's sound would
/// exceed the limit, or exportCancelled as soon as `isCancelled` says so.
AudioData readAll(const MediaBackend& backend, const ImportedClip& clip, SourceRange range,
                  const CancelCheck& isCancelled = {});

} // namespace AudioDecoding
} // namespace flowtide
