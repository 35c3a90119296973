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

/// "time:speed,…": sorted points at least KeyframeRules::headlessMinimumSpacing apart, clamped to the clip and to
/// lowestSpeed...highestSpeed; no text: real time throughout. `duration` in seconds of the source, here and below.
SpeedKeyframes parseCurve(const std::optional<std::string>& text, double duration, const WarningSink& warn);

/// "start:end", clamped to the clip; no text: the whole clip.
SourceRange parseSourceRange(const std::optional<std::string>& text, double duration);

/// "start:end,…" or "none" (an empty list); nothing when absent. Neither sorted nor merged.
std::optional<SourceRanges> parseOpticalFlowRanges(const std::optional<std::string>& text, double duration);

/// "width:height" as width ÷ height; no text: the first shape, 9:16.
double parseAspect(const std::optional<std::string>& text);

/// "time:position,…", sorted and clamped to the clip and to the crop's positions; none for "center" and no text.
SpeedKeyframes parseCropPoints(const std::string& text, double duration);

/// As parseCropPoints() has it, over the trim; no crop at all when absent.
std::optional<VerticalCropSettings> parseVerticalCrop(const std::optional<std::string>& text, double aspect,
                                                      double smoothing, double duration, SourceRange sourceRange);

/// The fields of one zoom block, "start-end:amount[:mode[:fx:fy[:speed]]]"; what is not there is empty.
struct ZoomFields {
    std::string text; ///< the whole block
    std::string times;
    std::string amount;
    std::string mode;
    std::string focalX;
    std::string focalY;
    std::string ramp;
    std::vector<std::string> more; ///< fields that have no meaning

    /// The pieces that the block is read without: no numbers where numbers are wanted, or more than have a meaning.
    std::vector<std::string> meaninglessWords() const;
};

/// The blocks of a list that semicolons separate.
std::vector<ZoomFields> splitZoomBlocks(const std::string& text);

/// "in", "out", "inout" or "constant", in any case of letters.
std::optional<ZoomMode> parseZoomMode(std::string word);

/// Blocks sorted by their start, clamped to the limits of a ZoomBlock; no zoom without text. What is no known mode
/// counts as in and out, and pieces that are no numbers are passed over.
std::optional<ZoomSettings> parseZoomBlocks(const std::optional<std::string>& text);

} // namespace flowtide::HeadlessExport
