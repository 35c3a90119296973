// Channel layouts across the libav boundary: which speaker each channel is meant for.
#pragma once

#include "media/ffmpeg/handles.h"

#include <string>

namespace flowtide::ffmpeg {

/// A layout's standard name, such as "5.1", else its channels, such as "FL+FR+LFE"; empty where channels mean no
/// particular speaker.
std::string channelLayoutName(const AVChannelLayout& layout);

/// Sets `layout` to what a name of channelLayoutName() stands for; whether there is such a layout of so many channels.
bool setNamedLayout(AVChannelLayout& layout, const std::string& name, int channels);

/// Sets `layout` to one of so many channels that all keep the whole band, none of them a low-frequency channel; whether
/// AAC has one.
bool setFullBandLayout(AVChannelLayout& layout, int channels);

/// Sets `layout` for linear PCM of so many channels without names: one and two are mono and stereo, more mean nothing.
void setUnnamedLayout(AVChannelLayout& layout, int channels);

} // namespace flowtide::ffmpeg
