// Which encoders write our codecs, and how they are set up.
#pragma once

#include "media/ffmpeg/handles.h"
#include "media/media_io.h"

namespace flowtide::ffmpeg {

/// An opened encoder. Throws FlowtideError::writerFailed("Cannot add video input: …") with the reason for what it
/// cannot write.
CodecContextPtr openVideoEncoder(const VideoSettings& settings, const CarriedMetadata& metadata);

/// An opened encoder. Throws FlowtideError::writerFailed("Cannot add audio input: …") with the reason for what it
/// cannot write.
CodecContextPtr openAudioEncoder(const AudioSettings& settings);

/// Interleaved floats to one frame of the encoder's sample format, rounded and clipped.
FramePtr encoderAudioFrame(const AVCodecContext& encoder, std::span<const float> interleaved);

} // namespace flowtide::ffmpeg
