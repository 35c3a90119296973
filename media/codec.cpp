// What each codec and container is called.
#include "media/codec.h"

#include <algorithm>
#include <cctype>

namespace flowtide {

std::string fourCCString(FourCC code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<unsigned char>((code >> shift) & 0xFF);
        text += std::isprint(byte) ? static_cast<char>(byte) : '.';
    }
    return text;
}

std::optional<VideoCodec> videoCodecType(FourCC code) {
    switch (code) {
    case fourCC("hvc1"):
        return VideoCodec::hevc;
    case fourCC("avc1"):
        return VideoCodec::h264;
    case fourCC("ap4h"):
        return VideoCodec::proRes4444;
    case fourCC("apch"):
        return VideoCodec::proRes422HQ;
    case fourCC("apcn"):
        return VideoCodec::proRes422;
    case fourCC("apcs"):
        return VideoCodec::proRes422LT;
    case fourCC("apco"):
        return VideoCodec::proRes422Proxy;
    default:
        return std::nullopt;
    }
}

bool isProRes(VideoCodec codec) {
    return codec != VideoCodec::hevc && codec != VideoCodec::h264;
}

std::string codecLabel(VideoCodec codec) {
    switch (codec) {
    case VideoCodec::h264:
        return "H.264";
    case VideoCodec::proRes4444:
        return "Apple ProRes 4444";
    case VideoCodec::proRes422HQ:
        return "Apple ProRes 422 HQ";
    case VideoCodec::proRes422:
        return "Apple ProRes 422";
    case VideoCodec::proRes422LT:
        return "Apple ProRes 422 LT";
    case VideoCodec::proRes422Proxy:
        return "Apple ProRes 422 Proxy";
    case VideoCodec::hevc:
        break;
    }
    return "HEVC / H.265";
}

FileType fileTypeForPath(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".mp4") return FileType::mpeg4;
    if (extension == ".m4v") return FileType::appleM4V;
    return FileType::quickTimeMovie;
}

std::string_view fileTypeName(FileType type) {
    switch (type) {
    case FileType::mpeg4:
        return "MPEG-4";
    case FileType::appleM4V:
        return "Apple M4V";
    case FileType::quickTimeMovie:
        break;
    }
    return "QuickTime movie";
}

} // namespace flowtide
