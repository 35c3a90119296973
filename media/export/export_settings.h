// What an export is encoded as: pure decisions on the probe record.
#pragma once

#include "core/output_size.h"
#include "media/imported_clip.h"
#include "media/media_io.h"
#include "media/video_frame.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flowtide {

/// The source's codec where it can be written, else HEVC.
VideoCodec outputCodec(const ImportedClip& clip);

/// Average bits per second that keep the source's quality; `areaFraction` is output area ÷ source area, 0...1.
std::int64_t transparentBitRate(const ImportedClip& clip, VideoCodec codec, double areaFraction);

/// Everything about the pictures of an export of `outputDuration` seconds.
VideoSettings videoSettings(const ImportedClip& clip, VideoCodec codec, OutputSize size, double outputDuration);

/// The tags present, by their names in messages: "color primaries", "transfer function", "YCbCr matrix".
std::vector<std::string> presentColorTagNames(const ColorProperties& tags);

/// The audio format that an export of the clip must have; nothing without audio.
std::optional<FourCC> expectedAudioFormatID(const ImportedClip& clip, FileType outputFileType);
/// Bits per sample of linear PCM output: the source's 16, 24 or 32 (float), else 24.
int outputPCMBitDepth(const AudioTrack& source);
/// Everything about the sound of an export of a clip with sound.
AudioSettings audioSettings(const ImportedClip& clip, FileType outputFileType);

} // namespace flowtide
