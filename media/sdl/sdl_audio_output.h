// Sound through SDL2, which opens whatever the desktop has.
#pragma once

#include "media/player/audio_output.h"
#include "media/player/playback_clock.h"

#include <memory>

namespace flowtide {

/// Opens the default device; nothing when there is none. SDL's "dummy" driver counts as none: it runs 5 % fast. The
/// clock must outlive the device.
std::unique_ptr<AudioOutput> openSdlAudio(AudioFormat format, AudioPull pull, const PlaybackClock& clock);

} // namespace flowtide
