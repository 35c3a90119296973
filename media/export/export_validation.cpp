// Each property of the written file against the source, with the text of each mismatch, and the report when all is
// well.
#include "media/export/export_validation.h"

#include "media/flowtide_error.h"
#include "media/media_io.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <system_error>
#include <vector>

namespace flowtide {

namespace {

constexpr double transformTolerance = 0.000001;
constexpr double sampleRateTolerance = 0.5; // Hz

using Failures = std::vector<std::string>;

std::string sizeText(std::int64_t width, std::int64_t height) {
    return fmt::format("{}x{}", width, height);
}

std::string_view rangeLabel(const ImportedClip& clip) {
    return clip.videoIsFullRange() ? "full range" : "video range";
}

bool transformsMatch(const AffineTransform& one, const AffineTransform& other) {
    const auto near = [](double a, double b) { return std::abs(a - b) <= transformTolerance; };
    return near(one.a, other.a) && near(one.b, other.b) && near(one.c, other.c) && near(one.d, other.d) &&
           near(one.tx, other.tx) && near(one.ty, other.ty);
}

void checkColorTags(const ImportedClip& output, const ImportedClip& source, Failures& failures) {
    if (!source.videoColorProperties()) return;
    const ColorProperties found = output.videoColorProperties().value_or(ColorProperties{});
    const auto check = [&](const char* name, const std::optional<std::string>& value,
                           const std::optional<std::string>& wanted) {
        if (wanted && value != wanted)
            failures.push_back(fmt::format("{} is {}, expected {}", name, value.value_or("unspecified"), *wanted));
    };
    check("color primaries", found.primaries, source.videoColorProperties()->primaries);
    check("transfer function", found.transferFunction, source.videoColorProperties()->transferFunction);
    check("YCbCr matrix", found.matrix, source.videoColorProperties()->matrix);
}

void checkVideo(const ImportedClip& output, const ImportedClip& source, const ExportExpectation& expected,
                Failures& failures) {
    if (output.videoCodecType != expected.codec) {
        const std::string label =
            output.videoCodecType ? codecLabel(*output.videoCodecType) : output.videoCodecDisplayName();
        failures.push_back(fmt::format("video codec is {}, expected {}", label, codecLabel(expected.codec)));
    }
    if (OutputSize{output.encodedWidth(), output.encodedHeight()} != expected.encodedSize)
        failures.push_back(fmt::format("encoded dimensions are {}, expected {}",
                                       sizeText(output.encodedWidth(), output.encodedHeight()),
                                       sizeText(expected.encodedSize.width, expected.encodedSize.height)));
    if (OutputSize{output.width, output.height} != expected.displaySize)
        failures.push_back(fmt::format("display dimensions are {}, expected {}", sizeText(output.width, output.height),
                                       sizeText(expected.displaySize.width, expected.displaySize.height)));
    if (!transformsMatch(output.preferredTransform, source.preferredTransform))
        failures.emplace_back("the orientation transform does not match the source");
    if (!(std::abs(output.frameRate - source.frameRate) <= frameRateTolerance))
        failures.push_back(fmt::format("frame rate is {}fps, expected {}", formatFrameRate(output.frameRate),
                                       formatFrameRate(source.frameRate)));
    const double interval = source.frameDuration.seconds();
    if (!(std::abs(output.frameDuration.seconds() - interval) <= std::max(interval * 0.0001, 0.000001)))
        failures.emplace_back("the exact frame interval does not match the source");
    if (output.videoBitDepth() != source.videoBitDepth())
        failures.push_back(fmt::format("video is {}-bit, expected {}", output.videoBitDepth(), source.videoBitDepth()));
    if (output.videoIsFullRange() != source.videoIsFullRange())
        failures.push_back(fmt::format("video color range is {}, expected {}", rangeLabel(output), rangeLabel(source)));
    checkColorTags(output, source, failures);
    const double durationTolerance = std::max(output.frameDuration.seconds() * 1.1, 0.005);
    if (!(std::abs(output.duration - expected.outputDuration) <= durationTolerance))
        failures.push_back(
            fmt::format("duration is {:.3f}s, expected {:.3f}s", output.duration, expected.outputDuration));
}

void validateAudio(const ImportedClip& output, const ImportedClip& source, FileType outputFileType,
                   Failures& failures) {
    if (output.hasAudio() && !source.hasAudio())
        failures.emplace_back("an audio track was added even though the source has no audio");
    if (!output.hasAudio() && source.hasAudio()) failures.emplace_back("the source audio track is missing");
    if (!output.hasAudio() || !source.hasAudio()) return;

    const AudioTrack& track = *output.audio;
    const AudioTrack& sourceTrack = *source.audio;
    const auto expectedFormat = expectedAudioFormatID(source, outputFileType);
    if (track.formatID != expectedFormat)
        failures.push_back(fmt::format("audio format is {}, expected {}", audioFormatLabel(track.formatID),
                                       audioFormatLabel(expectedFormat)));
    if (!(std::abs(track.sampleRate - sourceTrack.sampleRate) <= sampleRateTolerance))
        failures.push_back(
            fmt::format("audio sample rate is {:.0f}Hz, expected {:.0f}", track.sampleRate, sourceTrack.sampleRate));
    if (track.channelCount != sourceTrack.channelCount)
        failures.push_back(
            fmt::format("audio has {} channels, expected {}", track.channelCount, sourceTrack.channelCount));
    if (expectedFormat == linearPCM && track.bitDepth != outputPCMBitDepth(sourceTrack))
        failures.push_back(
            fmt::format("PCM audio is {}-bit, expected {}", track.bitDepth, outputPCMBitDepth(sourceTrack)));
}

ExportValidationReport report(const ImportedClip& output, const ImportedClip& source,
                              const ExportExpectation& expected) {
    const std::string codec = codecLabel(expected.codec);
    const std::string size = sizeText(output.width, output.height);
    const std::string rate = formatFrameRate(output.frameRate) + " fps";
    const std::string audio = output.audio ? audioDescription(*output.audio) : "No audio";
    ExportValidationReport result;
    result.summary = fmt::format("{} · {} · {} · {}", codec, size, rate, audio);
    result.details = fmt::format(
        "Codec: {}\nDimensions: {} (encoded {}){}\nFrame rate: {}\nBit depth: {}-bit\nColor: {}, {}\nAudio: {}\n"
        "Source range: {:.6f}:{:.6f}\nDuration: {:.3f}s",
        codec, size, sizeText(output.encodedWidth(), output.encodedHeight()),
        expected.socialCropApplied ? " — social crop" : "", rate, output.videoBitDepth(), rangeLabel(output),
        source.videoColorProperties() ? "Source-specified color tags matched" : "Source color tags unspecified", audio,
        expected.sourceRange.lower, expected.sourceRange.upper, output.duration);
    return result;
}

} // namespace

std::string formatFrameRate(double frameRate) {
    std::string text = fmt::format("{:.3f}", frameRate);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string audioFormatLabel(std::optional<FourCC> format) {
    if (!format) return "No audio format";
    if (*format == aac) return "AAC";
    if (*format == linearPCM) return "Linear PCM";
    for (int shift = 24; shift >= 0; shift -= 8)
        if (!std::isprint(static_cast<unsigned char>((*format >> shift) & 0xFF)))
            return fmt::format("0x{:08X}", *format);
    return fourCCString(*format);
}

std::string audioDescription(const AudioTrack& track) {
    std::string text = audioFormatLabel(track.formatID);
    if (track.formatID == linearPCM && track.bitDepth > 0) text += fmt::format(" {}-bit", track.bitDepth);
    return text + fmt::format(", {:.0f} Hz, {} channel{}", track.sampleRate, track.channelCount,
                              track.channelCount == 1 ? "" : "s");
}

ExportValidationReport validateOutput(const ImportedClip& output, const ImportedClip& source,
                                      const ExportExpectation& expected) {
    if (!std::isfinite(output.duration) || output.duration <= 0)
        throw FlowtideError::validationFailed("The rendered file has no playable duration.");
    Failures failures;
    checkVideo(output, source, expected, failures);
    validateAudio(output, source, expected.fileType, failures);
    if (!failures.empty()) throw FlowtideError::validationFailed(fmt::format("{}.", fmt::join(failures, "; ")));
    return report(output, source, expected);
}

ExportValidationReport validateOutputFile(const MediaBackend& backend, const std::filesystem::path& file,
                                          const ImportedClip& source, const ExportExpectation& expected) {
    std::error_code sizeError;
    if (const auto size = std::filesystem::file_size(file, sizeError); sizeError || size == 0)
        throw FlowtideError::validationFailed("Export produced a zero-byte file.");
    const ImportedClip output = [&] {
        try {
            return ImportedClip::load(backend, file);
        } catch (const std::runtime_error& error) {
            throw FlowtideError::validationFailed(
                fmt::format("The rendered file could not be reopened: {}", error.what()));
        }
    }();
    return validateOutput(output, source, expected);
}

} // namespace flowtide
