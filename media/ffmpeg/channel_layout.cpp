// Names of channel layouts, and layouts for channels without names.
#include "media/ffmpeg/channel_layout.h"

#include <array>

namespace flowtide::ffmpeg {

std::string channelLayoutName(const AVChannelLayout& layout) {
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC) return {};
    std::array<char, 256> text{};
    const int length = av_channel_layout_describe(&layout, text.data(), text.size());
    if (length <= 0 || length > static_cast<int>(text.size())) return {};
    std::string name = text.data();
    // Layouts without a name of their own read "3 channels (FL+FR+LFE)", which libav itself does not take back.
    const auto open = name.find(" channels (");
    if (open == std::string::npos) return name;
    const auto begin = name.find('(', open) + 1;
    return name.substr(begin, name.rfind(')') - begin);
}

bool setNamedLayout(AVChannelLayout& layout, const std::string& name, int channels) {
    av_channel_layout_uninit(&layout);
    if (!name.empty() && av_channel_layout_from_string(&layout, name.c_str()) >= 0 && layout.nb_channels == channels)
        return true;
    av_channel_layout_uninit(&layout);
    return false;
}

bool setFullBandLayout(AVChannelLayout& layout, int channels) {
    constexpr std::array names{"mono", "stereo", "3.0", "4.0", "5.0", "6.0", "7.0", "octagonal"};
    return channels >= 1 && channels <= static_cast<int>(names.size()) &&
           setNamedLayout(layout, names[static_cast<std::size_t>(channels - 1)], channels);
}

void setUnnamedLayout(AVChannelLayout& layout, int channels) {
    if (channels <= 2 && setFullBandLayout(layout, channels)) return;
    av_channel_layout_uninit(&layout);
    layout.order = AV_CHANNEL_ORDER_UNSPEC;
    layout.nb_channels = channels;
}

} // namespace flowtide::ffmpeg
