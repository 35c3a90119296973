// How a clip's proxy is to be written, from its probe record alone.
#pragma once

#include "core/output_size.h"
#include "media/imported_clip.h"
#include "media/media_io.h"

#include <optional>

namespace flowtide {

/// The displayed size of a clip's proxy: within 1280 × 720 and never larger than the clip; each side at least 2.
OutputSize proxySize(const ImportedClip& clip);

/// The decisions of one proxy.
struct ProxyPlan {
    /// The source as it is to be read: its pictures at the proxy's size, its sound at a rate that the encoder takes.
    ImportedClip source;
    VideoSettings video; ///< turned and tagged as the source is
    std::optional<AudioSettings> audio;
    CarriedMetadata metadata; ///< what the pictures need to be shown rightly, and nothing of the recording
};

ProxyPlan planProxy(const ImportedClip& clip);

} // namespace flowtide
