// Splits the texts at their separators, clamps the numbers and puts them in order.
#include "cli/arguments.h"

#include "cli/decimal.h"
#include "core/keyframe_rules.h"
#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <utility>

namespace flowtide::HeadlessExport {

namespace {

constexpr double shortestTrim = 0.001; // seconds

enum class EmptyPieces { keep, drop };

std::vector<std::string> split(const std::string& text, char separator, EmptyPieces empty) {
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        if (end > begin || empty == EmptyPieces::keep) pieces.push_back(text.substr(begin, end - begin));
        if (end == text.size()) return pieces;
        begin = end + 1;
    }
}

struct NumberPair {
    double first;
    double second;
};

/// Exactly two numbers around a colon.
std::optional<NumberPair> parsePair(const std::string& text, EmptyPieces empty) {
    const auto pieces = split(text, ':', empty);
    if (pieces.size() != 2) return std::nullopt;
    const auto first = parseDecimal(pieces[0]);
    const auto second = parseDecimal(pieces[1]);
    if (!first || !second) return std::nullopt;
    return NumberPair{*first, *second};
}

/// The pieces that are numbers; others are skipped.
std::vector<double> numbersIn(const std::string& text, char separator) {
    std::vector<double> numbers;
    for (const auto& piece : split(text, separator, EmptyPieces::drop))
        if (const auto number = parseDecimal(piece)) numbers.push_back(*number);
    return numbers;
}

SpeedKeyframe point(double time, double value) {
    return {Uuid::random(), time, value, SpeedKeyframeRole::curve};
}

/// "time:value,…" sorted by time, each clamped; `failure` makes the sentence for a piece that is no pair.
template <typename Failure>
SpeedKeyframes parsePoints(const std::string& text, double duration, double lowest, double highest,
                           const Failure& failure) {
    SpeedKeyframes points;
    for (const auto& piece : split(text, ',', EmptyPieces::drop)) {
        const auto pair = parsePair(piece, EmptyPieces::drop);
        if (!pair) throw FlowtideError::invalidArgument(failure(piece));
        points.push_back(
            point(std::clamp(pair->first, 0.0, std::max(duration, 0.0)), std::clamp(pair->second, lowest, highest)));
    }
    sortByTime(points);
    return points;
}

/// The values of a focal field, the frame's middle where it holds none.
std::vector<double> parseFocal(const std::string& text) {
    std::vector<double> values = numbersIn(text, '>');
    for (double& value : values)
        value = std::clamp(value, 0.0, 1.0);
    if (values.empty()) values.push_back(ZoomFocalKeyframe{}.x);
    return values;
}

std::optional<ZoomBlock> parseZoomBlock(const ZoomFields& fields) {
    const auto times = numbersIn(fields.times, '-');
    const auto amount = parseDecimal(fields.amount);
    if (times.size() != 2 || !amount) return std::nullopt;

    const auto xs = parseFocal(fields.focalX);
    const auto ys = parseFocal(fields.focalY);
    ZoomBlock block;
    block.id = Uuid::random();
    block.startTime = times[0];
    block.endTime = times[1];
    block.amount = std::clamp(*amount, lowestZoomAmount, highestZoomAmount);
    block.mode = parseZoomMode(fields.mode).value_or(block.mode);
    block.focalX = xs.front();
    block.focalY = ys.front();
    if (xs.size() > 1 || ys.size() > 1) block.focalKeyframes = {{0, xs.front(), ys.front()}, {1, xs.back(), ys.back()}};
    block.rampDuration = std::clamp(parseDecimal(fields.ramp).value_or(block.rampDuration), 0.0, longestZoomRamp);
    return block;
}

bool isCenter(const std::string& text) {
    constexpr std::string_view word = "center";
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; });
}

} // namespace

std::optional<std::string> takeOption(Arguments& arguments, const std::string& name) {
    const auto found = std::find(arguments.begin(), arguments.end(), name);
    if (found == arguments.end() || found + 1 == arguments.end()) return std::nullopt;
    std::string value = *(found + 1);
    arguments.erase(found, found + 2);
    return value;
}

SpeedKeyframes parseCurve(const std::optional<std::string>& text, double duration, const WarningSink& warn) {
    if (!text || text->empty()) return {point(0, realTimeSpeed), point(duration, realTimeSpeed)};
    const auto points = parsePoints(*text, duration, lowestSpeed, highestSpeed, [](const std::string& piece) {
        return fmt::format("Invalid curve segment \"{}\" — expected time:speed", piece);
    });
    SpeedKeyframes kept;
    for (const auto& candidate : points) {
        if (!kept.empty() && candidate.time - kept.back().time < KeyframeRules::headlessMinimumSpacing) {
            warn(fmt::format("[Headless] Skipping keyframe at {}s — within {}s of the previous one",
                             shortestDecimal(candidate.time), shortestDecimal(KeyframeRules::headlessMinimumSpacing)));
            continue;
        }
        kept.push_back(candidate);
    }
    return kept;
}

SourceRange parseSourceRange(const std::optional<std::string>& text, double duration) {
    if (!text || text->empty()) return {0, duration};
    const auto pair = parsePair(*text, EmptyPieces::keep);
    if (!pair) throw FlowtideError::invalidArgument(fmt::format("Invalid trim \"{}\" — expected start:end", *text));
    const double longest = std::max(duration, 0.0);
    const SourceRange range{std::clamp(pair->first, 0.0, longest), std::clamp(pair->second, 0.0, longest)};
    if (range.upper - range.lower < shortestTrim)
        throw FlowtideError::invalidArgument("Trim end must be after trim start");
    return range;
}

std::optional<SourceRanges> parseOpticalFlowRanges(const std::optional<std::string>& text, double duration) {
    if (!text) return std::nullopt;
    if (*text == "none") return SourceRanges{};
    const auto pieces = split(*text, ',', EmptyPieces::keep);
    if (pieces.size() > mostRanges)
        throw FlowtideError::invalidArgument("Use --flow-ranges start:end,start:end or none.");
    SourceRanges ranges;
    for (const auto& piece : pieces) {
        const auto pair = parsePair(piece, EmptyPieces::keep);
        if (!pair || pair->first < 0 || pair->first >= pair->second || pair->second > duration)
            throw FlowtideError::invalidArgument("Optical Flow ranges must be start:end pairs within the source clip.");
        ranges.push_back({pair->first, pair->second});
    }
    return ranges;
}

double parseAspect(const std::optional<std::string>& text) {
    if (!text || text->empty()) return widthOverHeight(CropAspectRatio::nineBySixteen);
    const auto pair = parsePair(*text, EmptyPieces::drop);
    const double aspect = pair && pair->first > 0 && pair->second > 0 ? pair->first / pair->second : 0;
    // The quotient of two valid numbers can still overflow or vanish.
    if (!(aspect > 0) || !std::isfinite(aspect))
        throw FlowtideError::invalidArgument(
            fmt::format("Invalid crop aspect \"{}\" — expected width:height, e.g. 9:16", *text));
    return aspect;
}

SpeedKeyframes parseCropPoints(const std::string& text, double duration) {
    if (text.empty() || isCenter(text)) return {};
    return parsePoints(text, duration, leftmostCrop, rightmostCrop, [](const std::string& piece) {
        return fmt::format("Invalid centering segment \"{}\" — expected time:position (0-1)", piece);
    });
}

std::optional<VerticalCropSettings> parseVerticalCrop(const std::optional<std::string>& text, double aspect,
                                                      double smoothing, double duration, SourceRange sourceRange) {
    if (!text) return std::nullopt;
    VerticalCropSettings settings;
    settings.aspectRatio = aspect;
    settings.smoothing = std::clamp(smoothing, 0.0, 1.0);
    if (text->empty() || isCenter(*text)) return settings;
    settings.centerKeyframes =
        KeyframeRules::curveForSourceRange(parseCropPoints(*text, duration), duration, sourceRange, centeredCrop);
    return settings;
}

std::vector<std::string> ZoomFields::meaninglessWords() const {
    std::vector<std::string> words;
    for (const auto& [field, separator] : {std::pair{&times, '-'}, {&focalX, '>'}, {&focalY, '>'}}) {
        std::vector<std::string> numbers;
        for (const auto& piece : split(*field, separator, EmptyPieces::drop))
            (parseDecimal(piece) ? numbers : words).push_back(piece);
        // The first number and the last one count.
        if (numbers.size() > 2) words.insert(words.end(), numbers.begin() + 1, numbers.end() - 1);
    }
    if (!ramp.empty() && !parseDecimal(ramp)) words.push_back(ramp);
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

std::vector<ZoomFields> splitZoomBlocks(const std::string& text) {
    std::vector<ZoomFields> blocks;
    for (const auto& piece : split(text, ';', EmptyPieces::drop)) {
        auto fields = split(piece, ':', EmptyPieces::drop);
        ZoomFields block;
        block.text = piece;
        std::string* const named[] = {&block.times,  &block.amount, &block.mode,
                                      &block.focalX, &block.focalY, &block.ramp};
        for (std::size_t i = 0; i < fields.size(); ++i)
            (i < std::size(named) ? *named[i] : block.more.emplace_back()) = std::move(fields[i]);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

std::optional<ZoomMode> parseZoomMode(std::string word) {
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (word == "in") return ZoomMode::zoomIn;
    if (word == "out") return ZoomMode::zoomOut;
    if (word == "inout") return ZoomMode::inOut;
    if (word == "constant") return ZoomMode::constant;
    return std::nullopt;
}

std::optional<ZoomSettings> parseZoomBlocks(const std::optional<std::string>& text) {
    if (!text || text->empty()) return std::nullopt;
    ZoomSettings settings;
    for (const ZoomFields& fields : splitZoomBlocks(*text)) {
        const auto block = parseZoomBlock(fields);
        if (!block)
            throw FlowtideError::invalidArgument(
                fmt::format("Invalid zoom \"{}\" — expected start-end:amount[:mode[:fx:fy[:speed]]]", fields.text));
        settings.blocks.push_back(*block);
    }
    std::stable_sort(settings.blocks.begin(), settings.blocks.end(),
                     [](const ZoomBlock& a, const ZoomBlock& b) { return a.startTime < b.startTime; });
    return settings;
}

} // namespace flowtide::HeadlessExport
