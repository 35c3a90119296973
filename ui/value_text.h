// How values are written, and read back from what was typed.
#pragma once

#include <QString>
#include <filesystem>
#include <optional>

namespace flowtide::valueText {

/// Seconds as "MM:SS.mmm", from an hour on "H:MM:SS.mmm".
QString timeCode(double seconds);
/// Seconds from "2.12", "2.12 s", "0:02.12" or "1:00:02"; nothing when it is no time.
std::optional<double> parsedTime(const QString& text);

/// "0.25x", "1.5x", "12x".
QString speed(double speed);
/// A speed from "0.25", "0.25x" or "25%"; nothing when it is no number.
std::optional<double> parsedSpeed(const QString& text);

/// A place of the crop, 0...1 of its travel: "Left", "Center", "Right" or whole percent.
QString position(double position);
/// From "Left", "71%" or "71"; nothing when it is neither.
std::optional<double> parsedPosition(const QString& text);

/// "62%" of 0...1; never more than it is.
QString percent(double share);

QString path(const std::filesystem::path& path);
std::filesystem::path path(const QString& path);
QString fileName(const std::filesystem::path& file);

} // namespace flowtide::valueText
