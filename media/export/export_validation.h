// Compares a rendered file with its source, property by property, before it may replace anything.
#pragma once

#include "core/time.h"
#include "media/export/export_settings.h"
#include "media/imported_clip.h"

#include <filesystem>
#include <optional>
#include <string>

namespace flowtide {

class MediaBackend;

/// What verification found on the written file.
struct ExportValidationReport {
    std::string summary; ///< the short items joined by " · "
    std::string details; ///< one line per property
};

/// What an export promised.
struct ExportExpectation {
    VideoCodec codec = VideoCodec::hevc;
    OutputSize encodedSize;
    OutputSize displaySize;
    double outputDuration = 0; ///< seconds
    SourceRange sourceRange;
    bool socialCropApplied = false;
    FileType fileType = FileType::quickTimeMovie;
};

/// Reopens the rendered file, probes it as a source is probed and compares. Throws FlowtideError::validationFailed
/// with every mismatch.
ExportValidationReport validateOutputFile(const MediaBackend& backend, const std::filesystem::path& file,
                                          const ImportedClip& source, const ExportExpectation& expected);

/// The comparison alone, on the two probe records.
ExportValidationReport validateOutput(const ImportedClip& output, const ImportedClip& source,
                                      const ExportExpectation& expected);

/// "29.97", "25", "12.5": up to three decimals, no trailing zeros.
std::string formatFrameRate(double frameRate);
/// "AAC", "Linear PCM", "No audio format", else the code's characters or its hexadecimal value.
std::string audioFormatLabel(std::optional<FourCC> format);
/// For example "AAC, 48000 Hz, 2 channels".
std::string audioDescription(const AudioTrack& track);

} // namespace flowtide
