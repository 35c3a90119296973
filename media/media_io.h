// What the media layer asks of a platform: probing, reading and writing movies. The backends implement it.
#pragma once

#include "core/time.h"
#include "media/cancel_check.h"
#include "media/imported_clip.h"
#include "media/seeking_reader.h"
#include "media/video_frame.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace flowtide {

/// Decodes the frames of a range in presentation order. Used by one thread at a time.
class VideoReader {
public:
    virtual ~VideoReader() = default;
    /// The next frame: first the last one at or before the range's start (or the track's first one), at the end the
    /// first one after the range's end. Nothing when there are no more. Throws FlowtideError::readerFailed.
    virtual std::optional<TimedFrame> next() = 0;
    /// Says that of the frames before `time` only the last one at or before it will be looked at; the reader may leave
    /// the others out.
    virtual void skipTo(SourceSeconds time) { static_cast<void>(time); }
    /// How many of the frames handed on were damaged and are only approximations.
    virtual int concealedFrameCount() const = 0;
};

/// A decoded stretch of sound: interleaved samples, the first one heard at `time`.
struct AudioBlock {
    SourceSeconds time;
    std::vector<float> samples;
};

/// Decodes the sound of a range, from at most half a second before it. Used by one thread at a time.
class AudioReader {
public:
    virtual ~AudioReader() = default;
    /// The next block; nothing at the end. Throws FlowtideError::readerFailed.
    virtual std::optional<AudioBlock> next() = 0;
    /// How many separate stretches of the sound read so far could not be decoded; nothing is delivered for them.
    virtual int damagedStretchCount() const = 0;
};

/// What an encoder is set up for.
enum class EncodingPurpose {
    delivery,  ///< the best picture for the bits
    scrubbing, ///< every frame decodes quickly and alone, so that any of them is shown at once
};

/// How the pictures of a movie are encoded.
struct VideoSettings {
    EncodingPurpose purpose = EncodingPurpose::delivery;
    VideoCodec codec = VideoCodec::h264;
    int width = 0;
    int height = 0;
    MediaTime frameDuration{1, 30};
    std::optional<MediaTime> timeBase; ///< seconds in which frame times count; absent: frameDuration
    PixelLayout layout;
    std::optional<ColorProperties> color;       ///< as tagged; absent: untagged
    std::optional<std::int64_t> averageBitRate; ///< bits per second; absent for codecs without one
    double expectedDuration = 0;                ///< output seconds
    DisplayMatrix displayMatrix = identityDisplayMatrix;
};

/// How the sound of a movie is encoded.
struct AudioSettings {
    FourCC format = aac;
    double sampleRate = 0; ///< Hz
    int channels = 0;
    std::string channelLayout; ///< as AudioTrack::channelLayout
    std::int64_t bitRate = 0;  ///< AAC only, bits per second
    int bitDepth = 0;          ///< linear PCM only: 16, 24 or 32 (float)
};

/// Writes one movie: add the tracks, start, append from one thread per track, finish. Failures throw
/// FlowtideError::writerFailed. Destroying an unfinished writer abandons the movie.
class MovieWriter {
public:
    virtual ~MovieWriter() = default;
    virtual void addVideo(const VideoSettings& settings) = 0;
    virtual void addAudio(const AudioSettings& settings) = 0;
    virtual void start() = 0;
    /// A frame that is shown from `start` on, in units of the time base; starts only grow. Each is shown until the next
    /// one; the last for `length`.
    virtual void appendVideo(const VideoFrame& frame, std::int64_t start, std::int64_t length) = 0;
    /// Interleaved samples that follow those appended before.
    virtual void appendAudio(std::span<const float> samples) = 0;
    /// No more of this track; each is called once.
    virtual void finishVideo() = 0;
    virtual void finishAudio() = 0;
    /// Completes the file after both tracks have finished.
    virtual void finish() = 0;
};

/// Writes one sound file. Failures throw FlowtideError::writerFailed. Destroying an unfinished writer abandons the
/// file.
class SoundFileWriter {
public:
    virtual ~SoundFileWriter() = default;
    /// Interleaved samples that follow those appended before.
    virtual void append(std::span<const float> samples) = 0;
    /// Completes the file.
    virtual void finish() = 0;
};

/// A place that a writer writes to. Implementations report failures by throwing std::system_error.
class OutputFile {
public:
    virtual ~OutputFile() = default;
    virtual void write(std::span<const std::uint8_t> bytes) = 0;
    /// Moves the write position; absolute, in bytes.
    virtual void seek(std::int64_t position) = 0;
    virtual std::int64_t size() const = 0;
};

/// A platform's media library. Stateless; may be used from any thread.
class MediaBackend {
public:
    virtual ~MediaBackend() = default;
    /// Reads the tracks' descriptions. Throws FlowtideError::readerFailed when the file is no readable movie.
    virtual ProbedMedia probe(const std::filesystem::path& path) const = 0;
    /// The readers ask `isCancelled` before every packet, on the way to the range too, and throw
    /// FlowtideError::exportCancelled once it says so.
    virtual std::unique_ptr<VideoReader> openVideo(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                                   const CancelCheck& isCancelled = {}) const = 0;
    /// The sound may also be a CAF file's, as createSoundFile() writes it, for a clip that describes its sound.
    virtual std::unique_ptr<AudioReader> openAudio(const ImportedClip& clip, SourceRange range,
                                                   const CancelCheck& isCancelled = {}) const = 0;
    /// For players: a reader that stays open and goes anywhere. Asks `isCancelled` as the others do.
    virtual std::unique_ptr<SeekingReader> openForPlayback(const ImportedClip& clip, PixelLayout layout,
                                                           const CancelCheck& isCancelled = {}) const = 0;
    /// `output` must outlive the writer.
    virtual std::unique_ptr<MovieWriter> createMovie(OutputFile& output, FileType fileType,
                                                     const CarriedMetadata& metadata) const = 0;
    /// A CAF file of linear PCM, 32-bit float; of `settings` the rate and the channels count. `output` must outlive the
    /// writer. Throws FlowtideError::writerFailed for a format that it cannot write.
    virtual std::unique_ptr<SoundFileWriter> createSoundFile(OutputFile& output,
                                                             const AudioSettings& settings) const = 0;
};

} // namespace flowtide
