// A media backend that plays a script: no files, no codecs, failures on demand.
#pragma once

#include "media/flowtide_error.h"
#include "media/media_io.h"
#include "tests/support/clip_maker.h"
#include "tests/support/scripted_seeking_reader.h"

#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace flowtide::test {

/// What the scripted backend answers and does; unset hooks do nothing.
struct MediaScript {
    ProbedMedia source{};                                           ///< the probe of every path but the written one
    std::function<ProbedMedia(const ProbedMedia&)> probeOfOutput{}; ///< from the source's probe
    std::int64_t decodableFrames = 1'000'000;                       ///< after them the video reader fails
    std::vector<AudioBlock> audioBlocks{};
    int damagedSoundStretches = 0;
    int concealedFrames = 0;
    PlaybackScript playback{};
    std::function<void(std::int64_t)> onAppendVideo{}; ///< called with the frame's index, may throw
    std::function<void(std::span<const float>)> onAppendMovieSound{};
    std::function<void(std::span<const float>)> onAppendSound{}; ///< to a sound file
    std::function<void()> onOpenVideo{};
    std::function<void()> onOpenAudio{};
    std::function<void()> onStart{};
    bool writesNothing = false;
    std::function<void()> onFinish{};
};

/// A plain 25 fps clip with sound, as a probe tells it.
inline ProbedMedia plainProbe() {
    ProbedMedia media;
    media.duration = 2;
    VideoTrack& track = media.video.emplace();
    track.nominalFrameRate = 25;
    track.constantSampleInterval = MediaTime{1, 25};
    track.encodedWidth = 64;
    track.encodedHeight = 48;
    track.codec = fourCC("avc1");
    track.estimatedDataRate = 2'000'000;
    return media;
}

class ScriptedBackend : public MediaBackend {
public:
    explicit ScriptedBackend(MediaScript script)
        : script_(std::move(script)) {}

    ProbedMedia probe(const std::filesystem::path& path) const override {
        const bool written = path.filename().string().find("-export-") != std::string::npos;
        return written && script_.probeOfOutput ? script_.probeOfOutput(script_.source) : script_.source;
    }

    std::unique_ptr<VideoReader> openVideo(const ImportedClip& clip, PixelLayout layout, SourceRange,
                                           const CancelCheck&) const override {
        class Reader : public VideoReader {
        public:
            Reader(const MediaScript& script, const ImportedClip& clip, PixelLayout layout)
                : script_(script)
                , interval_(clip.frameDuration)
                , picture_(numberedFrame(layout, static_cast<int>(clip.encodedWidth()),
                                         static_cast<int>(clip.encodedHeight()), 0))
                , count_(static_cast<std::int64_t>(clip.duration / clip.frameDuration.seconds())) {}
            std::optional<TimedFrame> next() override {
                if (index_ >= script_.decodableFrames)
                    throw FlowtideError::readerFailed("Video decode failed mid-file");
                if (index_ >= count_) return std::nullopt;
                return TimedFrame{picture_, {interval_.secondsTimes(index_++)}};
            }
            int concealedFrameCount() const override { return script_.concealedFrames; }

        private:
            const MediaScript& script_;
            MediaTime interval_;
            VideoFrame picture_;
            std::int64_t count_;
            std::int64_t index_ = 0;
        };
        if (script_.onOpenVideo) script_.onOpenVideo();
        return std::make_unique<Reader>(script_, clip, layout);
    }

    std::unique_ptr<AudioReader> openAudio(const ImportedClip&, SourceRange,
                                           const CancelCheck& isCancelled) const override {
        class Reader : public AudioReader {
        public:
            Reader(const MediaScript& script, CancelCheck isCancelled)
                : script_(script)
                , isCancelled_(std::move(isCancelled)) {}
            std::optional<AudioBlock> next() override {
                throwIfCancelled(isCancelled_);
                if (index_ >= script_.audioBlocks.size()) return std::nullopt;
                return script_.audioBlocks[index_++];
            }
            int damagedStretchCount() const override { return script_.damagedSoundStretches; }

        private:
            const MediaScript& script_;
            CancelCheck isCancelled_;
            std::size_t index_ = 0;
        };
        if (script_.onOpenAudio) script_.onOpenAudio();
        return std::make_unique<Reader>(script_, isCancelled);
    }

    std::unique_ptr<SeekingReader> openForPlayback(const ImportedClip& clip, PixelLayout layout,
                                                   const CancelCheck& isCancelled) const override {
        return std::make_unique<ScriptedSeekingReader>(script_.playback, clip, layout, isCancelled);
    }

    std::unique_ptr<MovieWriter> createMovie(OutputFile& output, FileType, const CarriedMetadata&) const override {
        class Writer : public MovieWriter {
        public:
            Writer(const MediaScript& script, OutputFile& output)
                : script_(script)
                , output_(output) {}
            void addVideo(const VideoSettings&) override {}
            void addAudio(const AudioSettings&) override {}
            void start() override {
                if (script_.onStart) script_.onStart();
                if (!script_.writesNothing) output_.write(std::vector<std::uint8_t>{'m', 'o', 'v', 'i', 'e'});
            }
            void appendVideo(const VideoFrame&, std::int64_t start, std::int64_t) override {
                if (script_.onAppendVideo) script_.onAppendVideo(start);
            }
            void appendAudio(std::span<const float> samples) override {
                if (script_.onAppendMovieSound) script_.onAppendMovieSound(samples);
            }
            void finishVideo() override {}
            void finishAudio() override {}
            void finish() override {
                if (script_.onFinish) script_.onFinish();
            }

        private:
            const MediaScript& script_;
            OutputFile& output_;
        };
        return std::make_unique<Writer>(script_, output);
    }

    std::unique_ptr<SoundFileWriter> createSoundFile(OutputFile& output, const AudioSettings&) const override {
        class Writer : public SoundFileWriter {
        public:
            Writer(const MediaScript& script, OutputFile& output)
                : script_(script)
                , output_(output) {}
            void append(std::span<const float> samples) override {
                output_.write(std::vector<std::uint8_t>{'s'});
                if (script_.onAppendSound) script_.onAppendSound(samples);
            }
            void finish() override {
                if (script_.onFinish) script_.onFinish();
            }

        private:
            const MediaScript& script_;
            OutputFile& output_;
        };
        return std::make_unique<Writer>(script_, output);
    }

private:
    MediaScript script_;
};

/// Plays frames at given times, each with its place in the list as its number.
class FrameSequence : public VideoReader {
public:
    explicit FrameSequence(std::vector<double> times)
        : FrameSequence(std::move(times), 0, std::numeric_limits<double>::infinity()) {}
    /// From the one with number `first` on, up to the first one after `end`.
    FrameSequence(std::vector<double> times, std::size_t first, double end)
        : times_(std::move(times))
        , next_(first)
        , end_(end) {}

    std::optional<TimedFrame> next() override {
        if (next_ >= times_.size() || ended_) return std::nullopt;
        const double time = times_[next_];
        ended_ = time > end_;
        ++delivered;
        return TimedFrame{numberedFrame({}, 16, 16, static_cast<std::int64_t>(next_++)), {time}};
    }
    void skipTo(SourceSeconds time) override {
        skips.push_back(time.value);
        while (next_ + 1 < times_.size() && times_[next_ + 1] <= time.value)
            ++next_;
    }
    int concealedFrameCount() const override { return 0; }

    int delivered = 0;
    std::vector<double> skips; ///< what skipTo() was called with

private:
    std::vector<double> times_;
    std::size_t next_;
    double end_;
    bool ended_ = false;
};

} // namespace flowtide::test
