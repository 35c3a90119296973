// The preview's sound as a file: retimed like an export's, pitch following speed.
#pragma once

#include "core/time_map.h"
#include "media/media_io.h"
#include "media/preview/temporary_items.h"
#include "media/sound/audio_decoding.h"

#include <filesystem>

namespace flowtide {

/// Renders sound into temporary files. Any thread. Backend and items must outlive it.
class PreviewAudio {
public:
    PreviewAudio(const MediaBackend& backend, TemporaryItems& items)
        : backend_(backend)
        , items_(items) {}

    /// Retimes the sound through the map into a new CAF file of 32-bit floats, at the sound's rate and channels. Throws
    /// FlowtideError with the sentence; no file is left then.
    std::filesystem::path render(const AudioData& audio, const TimeMap& timeMap) const;

private:
    const MediaBackend& backend_;
    TemporaryItems& items_;
};

} // namespace flowtide
