// Copies the samples of a movie into one that our own writer would not make: fragmented, encrypted, with more streams.
#pragma once

#include "media/ffmpeg/handles.h"

extern "C" {
#include <libavcodec/bsf.h>
}

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace flowtide::test {

/// Writes the tracks of `inputs`, in order, to a movie with these options of libavformat's "mp4" muxer. `filter` is
/// what each packet goes through, in libavcodec's words: a list of bitstream filters.
inline void remux(const std::vector<std::filesystem::path>& inputs, const std::filesystem::path& output,
                  const std::map<std::string, std::string>& options, const char* filter = "null") {
    AVFormatContext* raw = nullptr;
    avformat_alloc_output_context2(&raw, nullptr, "mp4", output.c_str());
    const ffmpeg::OutputPtr movie(raw);
    std::vector<ffmpeg::InputPtr> sources;
    std::vector<std::unique_ptr<AVBSFContext, void (*)(AVBSFContext*)>> filters; // by stream of the output
    for (const auto& path : inputs) {
        AVFormatContext* source = nullptr;
        if (avformat_open_input(&source, path.c_str(), nullptr, nullptr) < 0) throw std::bad_alloc();
        sources.emplace_back(source);
        avformat_find_stream_info(source, nullptr);
        for (unsigned i = 0; i < source->nb_streams; ++i) {
            AVStream* stream = avformat_new_stream(movie.get(), nullptr);
            AVBSFContext* filterOfStream = nullptr;
            if (av_bsf_list_parse_str(filter, &filterOfStream) < 0) throw std::bad_alloc();
            filters.emplace_back(filterOfStream, [](AVBSFContext* bsf) { av_bsf_free(&bsf); });
            avcodec_parameters_copy(filterOfStream->par_in, source->streams[i]->codecpar);
            filterOfStream->time_base_in = source->streams[i]->time_base;
            if (av_bsf_init(filterOfStream) < 0) throw std::bad_alloc();
            avcodec_parameters_copy(stream->codecpar, filterOfStream->par_out);
            stream->codecpar->codec_tag = 0;
            stream->time_base = source->streams[i]->time_base;
        }
    }
    ffmpeg::Dictionary dictionary;
    for (const auto& [key, value] : options)
        dictionary.set(key, value);
    avio_open(&movie->pb, output.c_str(), AVIO_FLAG_WRITE);
    if (avformat_write_header(movie.get(), dictionary.address()) < 0) throw std::bad_alloc();
    const ffmpeg::PacketPtr packet = ffmpeg::makePacket();
    unsigned firstStream = 0;
    for (const auto& source : sources) {
        while (av_read_frame(source.get(), packet.get()) >= 0) {
            const AVRational from = source->streams[packet->stream_index]->time_base;
            packet->stream_index += static_cast<int>(firstStream);
            AVBSFContext* bsf = filters.at(static_cast<std::size_t>(packet->stream_index)).get();
            if (av_bsf_send_packet(bsf, packet.get()) < 0 || av_bsf_receive_packet(bsf, packet.get()) < 0)
                throw std::bad_alloc();
            av_packet_rescale_ts(packet.get(), from, movie->streams[packet->stream_index]->time_base);
            av_interleaved_write_frame(movie.get(), packet.get());
        }
        firstStream += source->nb_streams;
    }
    av_write_trailer(movie.get());
    avio_closep(&movie->pb);
}

} // namespace flowtide::test
