// The backend that the rest of the program is given.
#include "media/ffmpeg/ffmpeg_backend.h"

#include "media/ffmpeg/audio_reader.h"
#include "media/ffmpeg/movie_writer.h"
#include "media/ffmpeg/probe.h"
#include "media/ffmpeg/seeking_reader.h"
#include "media/ffmpeg/sound_file_writer.h"
#include "media/ffmpeg/video_reader.h"

extern "C" {
#include <libavutil/log.h>
}

namespace flowtide {

namespace {

class FFmpegBackend : public MediaBackend {
public:
    // Failures reach people as one sentence of ours, not as the library's chatter.
    FFmpegBackend() { av_log_set_level(AV_LOG_QUIET); }

    ProbedMedia probe(const std::filesystem::path& path) const override { return ffmpeg::probeMovie(path); }

    std::unique_ptr<VideoReader> openVideo(const ImportedClip& clip, PixelLayout layout, SourceRange range,
                                           const CancelCheck& isCancelled) const override {
        return ffmpeg::openVideoReader(clip, layout, range, isCancelled);
    }

    std::unique_ptr<AudioReader> openAudio(const ImportedClip& clip, SourceRange range,
                                           const CancelCheck& isCancelled) const override {
        return ffmpeg::openAudioReader(clip, range, isCancelled);
    }

    std::unique_ptr<SeekingReader> openForPlayback(const ImportedClip& clip, PixelLayout layout,
                                                   const CancelCheck& isCancelled) const override {
        return ffmpeg::openSeekingReader(clip, layout, isCancelled);
    }

    std::unique_ptr<MovieWriter> createMovie(OutputFile& output, FileType fileType,
                                             const CarriedMetadata& metadata) const override {
        return ffmpeg::createMovieWriter(output, fileType, metadata);
    }

    std::unique_ptr<SoundFileWriter> createSoundFile(OutputFile& output, const AudioSettings& settings) const override {
        return ffmpeg::createSoundFileWriter(output, settings);
    }
};

} // namespace

std::unique_ptr<MediaBackend> makeFFmpegBackend() {
    return std::make_unique<FFmpegBackend>();
}

} // namespace flowtide
