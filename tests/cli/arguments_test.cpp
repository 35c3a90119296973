// The argument grammar, as tables.
#include "cli/arguments.h"
#include "cli/decimal.h"
#include "cli/export_command_line.h"
#include "media/flowtide_error.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::HeadlessExport {
namespace {

const WarningSink noWarnings = [](const std::string& line) { ADD_FAILURE() << line; };

std::string refusal(const std::function<void()>& parse) {
    try {
        parse();
    } catch (const FlowtideError& error) {
        EXPECT_EQ(error.kind(), FlowtideError::Case::invalidArgument);
        return error.what();
    }
    return {};
}

using Points = std::vector<std::pair<double, double>>;

Points pointsOf(const SpeedKeyframes& keyframes) {
    Points points;
    for (const auto& keyframe : keyframes)
        points.emplace_back(keyframe.time, keyframe.speed);
    return points;
}

TEST(Decimal, WholeStringsOnly) {
    const std::pair<const char*, double> numbers[] = {{"1", 1},  {"-2.5", -2.5},  {"+3", 3},     {".5", 0.5},
                                                      {"4.", 4}, {"1e-3", 0.001}, {"2E+2", 200}, {"1e-999", 0}};
    const std::string manyZeros(400, '0');
    EXPECT_EQ(parseDecimal("0." + manyZeros + "1"), 0);
    EXPECT_EQ(parseDecimal("1" + manyZeros + "e-400"), 1);
    EXPECT_EQ(parseDecimal("1" + manyZeros + "e-5"), std::nullopt); // beyond all doubles, whatever its exponent's sign
    EXPECT_FALSE(std::signbit(*parseDecimal("-0")));
    for (const auto& [text, value] : numbers)
        EXPECT_EQ(parseDecimal(text), value) << text;
    for (const char* text : {"",   " 1", "1 ", "1s", "2x", "1,5", "inf", "nan",   "-inf",   "0x10",
                             "1e", "e5", "+",  "-",  ".",  "+-1", "--1", "1e999", "-1e999", "1.2.3"})
        EXPECT_EQ(parseDecimal(text), std::nullopt) << text;
    EXPECT_EQ(shortestDecimal(0.005), "0.005");
    EXPECT_EQ(shortestDecimal(3), "3.0");
    EXPECT_EQ(shortestDecimal(1e-7), "1e-07");
}

TEST(Arguments, OptionsAreTakenOnceAndAnywhere) {
    Arguments list{"--zoom", "a", "x", "--zoom", "b", "--lonely"};
    EXPECT_EQ(takeOption(list, "--zoom"), "a");
    EXPECT_EQ(takeOption(list, "--lonely"), std::nullopt);
    EXPECT_EQ(takeOption(list, "--Zoom"), std::nullopt);
    EXPECT_EQ(list, (Arguments{"x", "--zoom", "b", "--lonely"}));
}

TEST(Arguments, Positionals) {
    const auto parse = [](const Arguments& list) { return parseArguments(sortWords(list)); };
    const auto parsed = parse({"--smooth-fps", "50", "--headless-export", "--vertical-smoothing", "x", "in", "out",
                               "--interpolation", "optical-flow", "0:1", "0.7", "1:2", "ignored"});
    EXPECT_EQ(parsed.input, "in");
    EXPECT_EQ(parsed.request.outputURL, "out");
    EXPECT_EQ(parsed.curve, "0:1");
    EXPECT_EQ(parsed.request.smoothing, 0.7);
    EXPECT_EQ(parsed.trim, "1:2");
    EXPECT_EQ(parsed.smoothFrameRate, 50);
    EXPECT_EQ(parsed.verticalSmoothing, 0.5);
    EXPECT_EQ(parsed.request.interpolation, FrameInterpolation::opticalFlow);
    EXPECT_EQ(parse({"--headless-export", "in", "out", "0:1", "soft"}).request.smoothing, 0.5);

    const std::string usage = "Usage: Flowtide --headless-export <input> <output> [curve] [smoothing] [trim]";
    for (const Arguments& list :
         {Arguments{"--headless-export", "in"}, Arguments{"--zoom", "--headless-export", "a", "b"},
          Arguments{"in", "out", "--headless-export"}})
        EXPECT_EQ(refusal([&] { parse(list); }), usage);
    EXPECT_EQ(refusal([&] {
                  parse({"--headless-export", "a", "b", "--interpolation", "Nearest"});
              }),
              "Use --interpolation optical-flow or nearest.");
    HeadlessExportArguments slow;
    slow.smoothFrameRate = 0;
    EXPECT_EQ(refusal([&] { parseRequest(slow, {}, noWarnings); }), "Use --smooth-fps with a positive frame rate.");
}

TEST(Arguments, Curves) {
    const struct {
        const char* text;
        Points points;
    } cases[] = {
        {"", {{0, 1}, {10, 1}}},
        {"0:1,5:0.5", {{0, 1}, {5, 0.5}}},
        {"5:2,-3:250,99:0", {{0, 100}, {5, 2}, {10, 0.01}}},
        {"0:1,0.01:2", {{0, 1}, {0.01, 2}}}, // as near as points may be
        {",,1:2,,", {{1, 2}}},
        {"1::2", {{1, 2}}},
        {",", {}},
    };
    for (const auto& [text, points] : cases)
        EXPECT_EQ(pointsOf(parseCurve(text, 10, noWarnings)), points) << text;
    EXPECT_EQ(pointsOf(parseCurve(std::nullopt, 4, noWarnings)), (Points{{0, 1}, {4, 1}}));
    for (const char* piece : {"1", "1:2:3", "a:1", "1:1x", "inf:1"})
        EXPECT_EQ(refusal([&] { parseCurve("0:1," + std::string(piece), 10, noWarnings); }),
                  "Invalid curve segment \"" + std::string(piece) + "\" — expected time:speed");
}

TEST(Arguments, CurvePointsTooNearAreDroppedWithAWarning) {
    std::vector<std::string> warnings;
    const auto warn = [&](const std::string& line) { warnings.push_back(line); };
    EXPECT_EQ(pointsOf(parseCurve("0:1,0.005:2,1:0.5", 10, warn)), (Points{{0, 1}, {1, 0.5}}));
    EXPECT_EQ(warnings,
              std::vector<std::string>{"[Headless] Skipping keyframe at 0.005s — within 0.01s of the previous one"});
    warnings.clear();
    EXPECT_EQ(pointsOf(parseCurve("3:1,3:2,12:5,11:4", 10, warn)), (Points{{3, 1}, {10, 5}}));
    EXPECT_EQ(warnings.size(), 2U);
    EXPECT_EQ(warnings[0], "[Headless] Skipping keyframe at 3.0s — within 0.01s of the previous one");
}

TEST(Arguments, Trims) {
    EXPECT_EQ(parseSourceRange(std::nullopt, 10), (SourceRange{0, 10}));
    EXPECT_EQ(parseSourceRange("-1:999", 10), (SourceRange{0, 10}));
    EXPECT_EQ(parseSourceRange("2:2.5", 10), (SourceRange{2, 2.5}));
    for (const char* text : {"2:2.0005", "5:2", "11:12"})
        EXPECT_EQ(refusal([&] { parseSourceRange(text, 10); }), "Trim end must be after trim start") << text;
    for (const char* text : {"2", "2:", ":3", "1:2:3", "a:b"})
        EXPECT_EQ(refusal([&] { parseSourceRange(text, 10); }),
                  "Invalid trim \"" + std::string(text) + "\" — expected start:end");
}

TEST(Arguments, FlowRanges) {
    EXPECT_EQ(parseOpticalFlowRanges(std::nullopt, 10), std::nullopt);
    EXPECT_EQ(parseOpticalFlowRanges("none", 10), SourceRanges{});
    EXPECT_EQ(parseOpticalFlowRanges("3:4,1:10", 10), (SourceRanges{{3, 4}, {1, 10}}));
    for (const char* text : {"", "1:2,", "3:1", "1:1", "-1:2", "1:11", "None", "1:nan"})
        EXPECT_EQ(refusal([&] { parseOpticalFlowRanges(text, 10); }),
                  "Optical Flow ranges must be start:end pairs within the source clip.")
            << text;
    std::string many = "1:2";
    for (int i = 0; i < 999; ++i)
        many += ",1:2";
    EXPECT_EQ(parseOpticalFlowRanges(many, 10)->size(), 1000U);
    EXPECT_EQ(refusal([&] { parseOpticalFlowRanges(many + ",1:2", 10); }),
              "Use --flow-ranges start:end,start:end or none.");
}

TEST(Arguments, VerticalCrops) {
    EXPECT_EQ(parseAspect(std::nullopt), 0.5625);
    EXPECT_EQ(parseAspect("4:5"), 0.8);
    for (const char* text : {"4", "0:1", "4:-5", "a:b", "1e300:1e-300", "1e-300:1e300"})
        EXPECT_EQ(refusal([&] { parseAspect(text); }),
                  "Invalid crop aspect \"" + std::string(text) + "\" — expected width:height, e.g. 9:16");
    EXPECT_EQ(parseVerticalCrop(std::nullopt, 0.8, 1, 10, {0, 10}), std::nullopt);
    for (const char* text : {"", "center", "CENTER"})
        EXPECT_TRUE(parseVerticalCrop(text, 0.5625, 0.5, 10, {0, 10})->centerKeyframes.empty()) << text;
    EXPECT_EQ(pointsOf(parseVerticalCrop(",", 0.5625, 0.5, 10, {0, 10})->centerKeyframes),
              (Points{{0, 0.5}, {10, 0.5}}));
    const auto crop = parseVerticalCrop("8:2,-1:-1,5:0.25", 0.8, 7, 10, {1, 9});
    EXPECT_EQ(crop->aspectRatio, 0.8);
    EXPECT_EQ(crop->smoothing, 1);
    EXPECT_EQ(pointsOf(crop->centerKeyframes), (Points{{1, 0.5}, {5, 0.25}, {8, 1}, {9, 0.5}}));
    EXPECT_EQ(refusal([] {
                  parseVerticalCrop("1:0.5,x", 1, 1, 10, {0, 10});
              }),
              "Invalid centering segment \"x\" — expected time:position (0-1)");
}

TEST(Arguments, ZoomBlocks) {
    EXPECT_EQ(parseZoomBlocks(std::nullopt), std::nullopt);
    EXPECT_EQ(parseZoomBlocks(""), std::nullopt);
    const auto zoom = parseZoomBlocks("5-6:9:OUT:0.2>x>0.4>1.8:0.1:99;;1-2:1;3-4:2:sideways:2:-1:0");
    ASSERT_EQ(zoom->blocks.size(), 3U);
    const ZoomBlock& plain = zoom->blocks[0];
    EXPECT_EQ(plain.startTime, 1);
    EXPECT_EQ(plain.endTime, 2);
    EXPECT_EQ(plain.amount, 1.1);
    EXPECT_EQ(plain.mode, ZoomMode::inOut);
    EXPECT_EQ(plain.rampDuration, 0.6);
    EXPECT_EQ(plain.focalX, 0.5);
    EXPECT_TRUE(plain.focalKeyframes.empty());
    const ZoomBlock& clamped = zoom->blocks[1];
    EXPECT_EQ(clamped.mode, ZoomMode::inOut);
    EXPECT_EQ(clamped.focalX, 1);
    EXPECT_EQ(clamped.rampDuration, 0);
    const ZoomBlock& moving = zoom->blocks[2];
    EXPECT_EQ(moving.amount, 4);
    EXPECT_EQ(moving.mode, ZoomMode::zoomOut);
    EXPECT_EQ(moving.rampDuration, 3);
    EXPECT_EQ(moving.focalKeyframes, (std::vector<ZoomFocalKeyframe>{{0, 0.2, 0.1}, {1, 1, 0.1}}));
    EXPECT_TRUE(parseZoomBlocks(";")->blocks.empty());
    for (const char* block : {"1:2", "1-2", "1-2-3:2", "1-2:big", "x-2:2", ":"})
        EXPECT_EQ(refusal([&] { parseZoomBlocks(block); }),
                  "Invalid zoom \"" + std::string(block) + "\" — expected start-end:amount[:mode[:fx:fy[:speed]]]");
}

} // namespace
} // namespace flowtide::HeadlessExport
