// Builds what the preview plays: the clip cut into short segments, each stretched as the speed curve says.
#pragma once

#include "core/speed_keyframe.h"
#include "media/preview/preview_audio.h"
#include "media/preview/rendered_preview.h"
#include "media/preview/retimed_composition.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace flowtide {

/// Decoded sound and what turns it into a file of the retimed sound. Both outlive the call that they are given to.
struct PreviewAudioSource {
    const AudioData& audio;
    const PreviewAudio& renderer;
};

/// What a composition is built from.
struct RetimedCompositionRequest {
    std::shared_ptr<const ImportedClip> clip;
    SpeedKeyframes keyframes;               ///< sorted by time
    std::optional<SourceRange> sourceRange; ///< absent: the whole clip
    double smoothing = 0.5;
    std::optional<double> segmentRate;              ///< segments for each source second; absent: the clip's frame rate
    std::int64_t maximumSegmentCount = 1'000'000;   ///< longer segments rather than more of them
    bool includeAudio = true;                       ///< without it there is no sound at all
    std::vector<RenderedPreview> cachedPreviews;    ///< those that match the curve
    std::optional<PreviewAudioSource> previewAudio; ///< present: its rendered file is played, no stretched segments
};

namespace RetimedCompositionEngine {

/// Builds the composition: about a microsecond a segment, and nothing is decoded. Blocks while preview audio is
/// rendered, where it is asked for; touches no file otherwise. Any thread. Throws FlowtideError::compositionFailed, and
/// whatever PreviewAudio::render throws.
RetimedMedia build(const RetimedCompositionRequest& request);

} // namespace RetimedCompositionEngine
} // namespace flowtide
