// Opening a movie file and choosing its tracks; what the probe and both readers have in common.
#pragma once

#include "media/ffmpeg/handles.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace flowtide::ffmpeg {

/// An opened movie and the tracks that we use of it.
struct MovieInput {
    InputPtr format;
    AVStream* video = nullptr; ///< the first video track that is no attached picture
    AVStream* audio = nullptr; ///< the first sound track that can be decoded, else the first one
};

/// Opens a local MOV, MP4 or M4V file; nothing else is tried, and nothing outside the file is followed. Throws
/// FlowtideError::readerFailed.
MovieInput openMovie(const std::filesystem::path& path);

/// The same for what a preview's sound may come from: a movie, or a CAF file where the extension says so.
MovieInput openSound(const std::filesystem::path& path);

/// Stops the demuxer from delivering any track but this one.
void deliverOnly(AVFormatContext& format, const AVStream& stream);

/// Seconds of a timestamp in a stream's time base.
double secondsOf(std::int64_t timestamp, AVRational timeBase);

/// Start and end of a stream on the clip's time line, in seconds; nothing when the file does not say.
struct StreamSpan {
    double start;
    double end;
};
std::optional<StreamSpan> spanOf(const AVStream& stream);

/// The decode time of the last sample that the file's index lists; nothing without an index.
std::optional<std::int64_t> lastIndexedDecodeTime(AVStream& stream);

/// Whether a packet is (or goes beyond) the last sample that the index lists, so that nothing of the file is missing.
bool reachesIndexEnd(const AVPacket& packet, const std::optional<std::int64_t>& lastIndexed);

/// How a decoder uses the cores: on several frames at once, each of which then comes some frames later, or on the parts
/// of one frame where its codec has any.
enum class DecoderThreads { throughput, lowDelay };

/// An opened decoder for a stream, with its threads set up. Throws FlowtideError::readerFailed(failure).
CodecContextPtr openDecoder(const AVStream& stream, const char* failure,
                            DecoderThreads threads = DecoderThreads::throughput);

/// What came of asking a decoder for its next frame.
enum class Received { frame, needsPacket, end };

/// Takes a decoder's next frame, and calls `onDamage` for each one that it could not decode. A draining decoder has
/// been given everything: what one of its threads fails at says nothing of the frames that the others hold.
Received receiveFrame(AVCodecContext& decoder, AVFrame& frame, bool isDraining, const std::function<void()>& onDamage);

} // namespace flowtide::ffmpeg
