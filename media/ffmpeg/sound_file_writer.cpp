// One muxer, without an encoder: the samples are stored as they come.
#include "media/ffmpeg/sound_file_writer.h"

#include "media/ffmpeg/channel_layout.h"
#include "media/ffmpeg/ffmpeg_error.h"
#include "media/ffmpeg/handles.h"
#include "media/ffmpeg/output_stream.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace flowtide::ffmpeg {

namespace {

static_assert(std::endian::native == std::endian::little, "samples are written as they lie in memory");

constexpr double highestSampleRate = std::numeric_limits<int>::max();
constexpr int mostChannels = 1024; // keeps packets within their size

class CAFWriter : public SoundFileWriter {
public:
    CAFWriter(OutputFile& output, const AudioSettings& settings)
        : stream_(output) {
        if (!(settings.sampleRate >= 1 && settings.sampleRate <= highestSampleRate) || settings.channels < 1 ||
            settings.channels > mostChannels)
            throw FlowtideError::writerFailed("Unsupported sound format");
        AVFormatContext* raw = nullptr;
        avformat_alloc_output_context2(&raw, nullptr, "caf", nullptr);
        format_ = allocated<OutputPtr>(raw);
        format_->pb = stream_.context();
        format_->flags |= AVFMT_FLAG_CUSTOM_IO;

        AVStream* track = avformat_new_stream(format_.get(), nullptr);
        if (!track) throw std::bad_alloc();
        AVCodecParameters& parameters = *track->codecpar;
        parameters.codec_type = AVMEDIA_TYPE_AUDIO;
        parameters.codec_id = AV_CODEC_ID_PCM_F32LE;
        parameters.format = AV_SAMPLE_FMT_FLT;
        parameters.sample_rate = static_cast<int>(std::lround(settings.sampleRate));
        parameters.bits_per_coded_sample = 8 * sizeof(float);
        parameters.block_align = settings.channels * static_cast<int>(sizeof(float));
        setUnnamedLayout(parameters.ch_layout, settings.channels);
        track->time_base = {1, parameters.sample_rate};
        channels_ = static_cast<std::size_t>(settings.channels);
        require(avformat_write_header(format_.get(), nullptr));
    }

    void append(std::span<const float> samples) override {
        // A packet's size is an int.
        constexpr std::size_t mostFrames = 1 << 16;
        for (std::size_t begin = 0; begin < samples.size();) {
            const std::size_t count = std::min(samples.size() - begin, mostFrames * channels_);
            PacketPtr packet = makePacket();
            if (av_new_packet(packet.get(), static_cast<int>(count * sizeof(float))) < 0) throw std::bad_alloc();
            std::memcpy(packet->data, samples.data() + begin, count * sizeof(float));
            packet->pts = packet->dts = framesWritten_;
            packet->duration = static_cast<std::int64_t>(count / channels_);
            framesWritten_ += packet->duration;
            require(av_write_frame(format_.get(), packet.get()));
            begin += count;
        }
    }

    void finish() override {
        const int code = av_write_trailer(format_.get());
        avio_flush(stream_.context());
        require(code);
    }

private:
    void require(int code) const {
        if (const auto& failure = stream_.failure())
            throw FlowtideError::writerFailed(fmt::format("{} (error {})", failure.message(), failure.value()));
        if (code < 0) throw FlowtideError::writerFailed(describe(code));
    }

    OutputStream stream_;
    OutputPtr format_;
    std::size_t channels_ = 1;
    std::int64_t framesWritten_ = 0;
};

} // namespace

std::unique_ptr<SoundFileWriter> createSoundFileWriter(OutputFile& output, const AudioSettings& settings) {
    return std::make_unique<CAFWriter>(output, settings);
}

} // namespace flowtide::ffmpeg
