// The argument grammar of the headless export: each parser turns one text into values, or throws
// FlowtideError::invalidArgument with the sentence to show.
#pragma once

#include "core/crop_framing.h"
#include "core/optical_flow_ranges.h"
#include "core/speed_keyframe.h"
#include "core/time.h"
#include "core/zoom_block.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace flowtide::HeadlessExport {

using Arguments = std::vector<std::string>;

/// Takes one complete warning line, without its line feed.
using WarningSink = std::function<void(const std::string&)>;

/// Removes the first `name` and the value that follows it, and returns the value. A name at the very end stays.
std::optional<std::string> takeOption(Arguments& arguments, const std::string& name);

/// "time:speed,…": sorted points at least 0.01 s apart, clamped to the clip and to speeds of 0.01 to 100; no text:
/// speed 1 throughout. `duration` in seconds of the source, here and below.
SpeedKeyframes parseCurve(const std::optional<std::string>& text, double duration, const WarningSink& warn);

/// "start:end", clamped to the clip; no text: the whole clip.
SourceRange parseSourceRange(const std::optional<std::string>& text, double duration);

/// "start:end,…" or "none" (an empty list); nothing when absent. Neither sorted nor merged.
std::optional<SourceRanges> parseOpticalFlowRanges(const std::optional<std::string>& text, double duration);

/// "width:height" as width ÷ height; no text: 9:16.
double parseAspect(const std::optional<std::string>& text);

/// "time:position,…" or "center"; no crop at all when absent.
std::optional<VerticalCropSettings> parseVerticalCrop(const std::optional<std::string>& text, double aspect,
                                                      double smoothing, double duration, SourceRange sourceRange);

/// "start-end:amount[:mode[:fx:fy[:speed]]];…"; no zoom without text.
std::optional<ZoomSettings> parseZoomBlocks(const std::optional<std::string>& text);

} // namespace flowtide::HeadlessExport
