// Sample times from indexes and packets.
#include "media/ffmpeg/sample_times.h"

#include "media/ffmpeg/movie_input.h"

#include <algorithm>

namespace flowtide::ffmpeg {

namespace {

SampleTimes indexedTimes(AVStream& stream) {
    SampleTimes times;
    const int count = avformat_index_get_entries_count(&stream);
    for (int i = 0; i < count; ++i)
        if (const AVIndexEntry* entry = avformat_index_get_entry(&stream, i);
            !(entry->flags & AVINDEX_DISCARD_FRAME) && entry->timestamp != AV_NOPTS_VALUE)
            times.push_back(entry->timestamp);
    std::sort(times.begin(), times.end());
    return times;
}

/// Whether the rest of the track, after the last time, is no longer than a few samples.
bool reachesEnd(const SampleTimes& times, const AVStream& stream) {
    constexpr double fewSamples = 4;
    const auto span = spanOf(stream);
    if (!span || times.size() < 2) return !span || !times.empty();
    const double first = secondsOf(times.front(), stream.time_base);
    const double last = secondsOf(times.back(), stream.time_base);
    return span->end - last <= fewSamples * (last - first) / static_cast<double>(times.size() - 1);
}

SampleTimes packetTimes(const std::filesystem::path& path, int streamIndex) {
    const MovieInput movie = openMovie(path);
    SampleTimes times;
    if (streamIndex >= static_cast<int>(movie.format->nb_streams)) return times;
    deliverOnly(*movie.format, *movie.format->streams[streamIndex]);
    const PacketPtr packet = makePacket();
    while (av_read_frame(movie.format.get(), packet.get()) >= 0) {
        if (packet->stream_index == streamIndex && packet->pts != AV_NOPTS_VALUE &&
            !(packet->flags & AV_PKT_FLAG_DISCARD))
            times.push_back(packet->pts);
        av_packet_unref(packet.get());
    }
    std::sort(times.begin(), times.end());
    return times;
}

} // namespace

SampleTimes sampleTimes(const std::filesystem::path& path, AVStream& stream) {
    SampleTimes times = indexedTimes(stream);
    if (reachesEnd(times, stream)) return times;
    SampleTimes fromPackets = packetTimes(path, stream.index);
    return fromPackets.size() > times.size() ? fromPackets : times;
}

} // namespace flowtide::ffmpeg
