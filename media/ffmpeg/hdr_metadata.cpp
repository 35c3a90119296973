// Moves HDR data between our record, streams, pictures and the HEVC encoder.
#include "media/ffmpeg/hdr_metadata.h"

#include "media/ffmpeg/movie_input.h"
#include "media/flowtide_error.h"

extern "C" {
#include <libavutil/mastering_display_metadata.h>
}

#include <fmt/format.h>

#include <cmath>
#include <cstring>

namespace flowtide::ffmpeg {

namespace {

// The units of the HEVC bitstream: chromaticities in 0.00002, luminances in 0.0001 cd/m².
constexpr int chromaticityUnits = 50'000;
constexpr int luminanceUnits = 10'000;

AVRational rational(double value, int units) {
    return {static_cast<int>(std::lround(value * units)), units};
}

/// Takes what is not known yet; either pointer may be null.
void take(const AVMasteringDisplayMetadata* display, const AVContentLightMetadata* light, CarriedMetadata& metadata) {
    if (display && display->has_primaries && display->has_luminance && !metadata.masteringDisplay) {
        MasteringDisplay& mastering = metadata.masteringDisplay.emplace();
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t axis = 0; axis < 2; ++axis)
                mastering.primaries[i][axis] = av_q2d(display->display_primaries[i][axis]);
        for (std::size_t axis = 0; axis < 2; ++axis)
            mastering.whitePoint[axis] = av_q2d(display->white_point[axis]);
        mastering.minimumLuminance = av_q2d(display->min_luminance);
        mastering.maximumLuminance = av_q2d(display->max_luminance);
    }
    if (light && !metadata.contentLightLevel)
        metadata.contentLightLevel = ContentLightLevel{light->MaxCLL, light->MaxFALL};
}

template <typename Data>
const Data* dataOf(const AVFrame& frame, AVFrameSideDataType type) {
    const AVFrameSideData* side = av_frame_get_side_data(&frame, type);
    return side ? reinterpret_cast<const Data*>(side->data) : nullptr;
}

/// The first picture that decodes; nothing when none does.
FramePtr firstPicture(const MovieInput& movie) {
    const CodecContextPtr decoder = openDecoder(*movie.video, "This clip's video codec cannot be decoded");
    const PacketPtr packet = makePacket();
    FramePtr frame = makeFrame();
    for (bool draining = false;;) {
        const Received received = receiveFrame(*decoder, *frame, draining, [] {});
        if (received == Received::frame) return frame;
        if (received == Received::end) return nullptr;
        draining = av_read_frame(movie.format.get(), packet.get()) < 0;
        if (draining || packet->stream_index == movie.video->index)
            avcodec_send_packet(decoder.get(), draining ? nullptr : packet.get());
        av_packet_unref(packet.get());
    }
}

} // namespace

void readHDRMetadata(AVStream& stream, CarriedMetadata& metadata) {
    const auto* display = av_stream_get_side_data(&stream, AV_PKT_DATA_MASTERING_DISPLAY_METADATA, nullptr);
    const auto* light = av_stream_get_side_data(&stream, AV_PKT_DATA_CONTENT_LIGHT_LEVEL, nullptr);
    take(reinterpret_cast<const AVMasteringDisplayMetadata*>(display),
         reinterpret_cast<const AVContentLightMetadata*>(light), metadata);
}

void readHDRMetadataOfFirstPicture(const std::filesystem::path& path, VideoTrack& track, CarriedMetadata& metadata) {
    const MovieInput movie = openMovie(path);
    if (!movie.video || !avcodec_find_decoder(movie.video->codecpar->codec_id)) return;
    deliverOnly(*movie.format, *movie.video);
    const FramePtr picture = firstPicture(movie);
    if (!picture) return;
    take(dataOf<AVMasteringDisplayMetadata>(*picture, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA),
         dataOf<AVContentLightMetadata>(*picture, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL), metadata);
    if (av_frame_get_side_data(picture.get(), AV_FRAME_DATA_DYNAMIC_HDR_PLUS)) track.hasHDR10Plus = true;
    if (av_frame_get_side_data(picture.get(), AV_FRAME_DATA_DOVI_RPU_BUFFER)) track.hasDolbyVision = true;
}

void attachHDRMetadata(AVStream& stream, const CarriedMetadata& metadata) {
    if (const auto& mastering = metadata.masteringDisplay) {
        AVMasteringDisplayMetadata display{};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t axis = 0; axis < 2; ++axis)
                display.display_primaries[i][axis] = rational(mastering->primaries[i][axis], chromaticityUnits);
        for (std::size_t axis = 0; axis < 2; ++axis)
            display.white_point[axis] = rational(mastering->whitePoint[axis], chromaticityUnits);
        display.min_luminance = rational(mastering->minimumLuminance, luminanceUnits);
        display.max_luminance = rational(mastering->maximumLuminance, luminanceUnits);
        display.has_primaries = display.has_luminance = 1;
        if (auto* data = av_stream_new_side_data(&stream, AV_PKT_DATA_MASTERING_DISPLAY_METADATA, sizeof display))
            std::memcpy(data, &display, sizeof display);
    }
    if (const auto& light = metadata.contentLightLevel) {
        AVContentLightMetadata level{};
        level.MaxCLL = light->maximumContent;
        level.MaxFALL = light->maximumFrameAverage;
        if (auto* data = av_stream_new_side_data(&stream, AV_PKT_DATA_CONTENT_LIGHT_LEVEL, sizeof level))
            std::memcpy(data, &level, sizeof level);
    }
}

std::string hevcHDRParameters(const CarriedMetadata& metadata) {
    std::string text;
    if (const auto& mastering = metadata.masteringDisplay) {
        const auto chromaticity = [](double value) { return std::lround(value * chromaticityUnits); };
        const auto luminance = [](double value) { return std::lround(value * luminanceUnits); };
        const auto& p = mastering->primaries;
        text += fmt::format(":master-display=G({},{})B({},{})R({},{})WP({},{})L({},{})", chromaticity(p[1][0]),
                            chromaticity(p[1][1]), chromaticity(p[2][0]), chromaticity(p[2][1]), chromaticity(p[0][0]),
                            chromaticity(p[0][1]), chromaticity(mastering->whitePoint[0]),
                            chromaticity(mastering->whitePoint[1]), luminance(mastering->maximumLuminance),
                            luminance(mastering->minimumLuminance));
    }
    if (const auto& light = metadata.contentLightLevel)
        text += fmt::format(":max-cll={},{}", light->maximumContent, light->maximumFrameAverage);
    return text;
}

} // namespace flowtide::ffmpeg
