// Every rule broken alone gives its sentence, its boundary passes, and several broken rules give the first in order.
#include "project/project_validation.h"
#include "tests/project/files/refusal.h"
#include "tests/project/random_project.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace flowtide::test {
namespace {

const std::string versionSentence = "This project requires a different version of Loftwell Video.";
const std::string sourceSentence = "The project's source reference is invalid.";
const std::string valuesSentence = "The project contains invalid edit values.";
const std::string originalSentence = "The project's original-frame ranges are invalid.";
const std::string flowSentence = "The project's Optical Flow ranges are invalid.";
const std::string trackedSentence = "The project's tracked ranges are invalid.";
const std::string overlapSentence = "The project's zoom blocks overlap.";

const double nan = std::nan("");
const double infinity = std::numeric_limits<double>::infinity();

/// The next double.
double below(double value) {
    return std::nextafter(value, -infinity);
}
double above(double value) {
    return std::nextafter(value, infinity);
}

/// A clip of ten seconds with one or two of everything.
FlowtideProject sample() {
    RandomProjects random(5);
    FlowtideProject project;
    project.source = {Url::ofFile("/clip.mov"), {}, "ab", 10};
    ProjectEdits& edits = project.edits;
    edits.keyframes = {{random.uuid(), 0, 1}, {random.uuid(), 10, 2}};
    edits.centerKeyframes = {{random.uuid(), 0, 0.5}, {random.uuid(), 10, 1}};
    edits.trimEnd = 10;
    edits.zoomBlocks = random.zoomBlocks(2, 10, 1);
    edits.previewStart = 1;
    edits.previewEnd = 2;
    edits.opticalFlowRanges = random.ranges(2, 10);
    edits.selectedOpticalFlowRangeID = edits.opticalFlowRanges->back().id;
    edits.originalFrameRanges = random.ranges(2, 10);
    for (auto* ranges : {&*edits.opticalFlowRanges, &*edits.originalFrameRanges}) {
        ranges->back().start = 4;
        ranges->back().end = 5;
    }
    edits.trackedRanges = random.trackedRanges(2, 10);
    return project;
}

using Change = std::function<void(FlowtideProject&)>;

std::string refusalAfter(const Change& change) {
    FlowtideProject project = sample();
    change(project);
    return refusal([&] { validate(project); });
}

/// A number of the document, its bounds, and the sentence for anything outside them.
struct Bounded {
    const char* name;
    std::function<double&(FlowtideProject&)> field;
    double lower;
    double upper;
    std::string sentence;
};

std::vector<Bounded> boundedNumbers() {
    const auto& values = valuesSentence;
    return {
        {"trimStart", [](auto& p) -> double& { return p.edits.trimStart; }, 0, below(10), values},
        {"trimEnd", [](auto& p) -> double& { return p.edits.trimEnd; }, above(0), 10, values},
        {"smoothing", [](auto& p) -> double& { return p.edits.smoothing; }, 0, 1, values},
        {"centerSmoothing", [](auto& p) -> double& { return p.edits.centerSmoothing; }, 0, 1, values},
        {"time", [](auto& p) -> double& { return p.edits.keyframes[1].time; }, 0, 10, values},
        {"speed", [](auto& p) -> double& { return p.edits.keyframes[1].speed; }, 0.01, 100, values},
        {"center time", [](auto& p) -> double& { return p.edits.centerKeyframes[1].time; }, 0, 10, values},
        {"center", [](auto& p) -> double& { return p.edits.centerKeyframes[1].speed; }, 0, 1, values},
        {"playhead", [](auto& p) -> double& { return p.edits.playhead; }, 0, 1, values},
        {"timelineZoom", [](auto& p) -> double& { return p.edits.timelineZoom; }, 1, 20, values},
        {"timelineCenter", [](auto& p) -> double& { return p.edits.timelineCenter; }, 0, 1, values},
        {"previewStart", [](auto& p) -> double& { return *p.edits.previewStart; }, 0, 2, values},
        {"previewEnd", [](auto& p) -> double& { return *p.edits.previewEnd; }, 1, 10, values},
        {"amount", [](auto& p) -> double& { return p.edits.zoomBlocks[1].amount; }, 1.1, 4, values},
        {"rampDuration", [](auto& p) -> double& { return p.edits.zoomBlocks[1].rampDuration; }, 0, 3, values},
        {"focalX", [](auto& p) -> double& { return p.edits.zoomBlocks[1].focalX; }, 0, 1, values},
        {"focalY", [](auto& p) -> double& { return p.edits.zoomBlocks[1].focalY; }, 0, 1, values},
        {"progress", [](auto& p) -> double& { return p.edits.zoomBlocks[1].focalKeyframes[0].progress; }, 0, 1, values},
        {"x", [](auto& p) -> double& { return p.edits.zoomBlocks[1].focalKeyframes[0].x; }, 0, 1, values},
        {"y", [](auto& p) -> double& { return p.edits.zoomBlocks[1].focalKeyframes[0].y; }, 0, 1, values},
        {"flow start", [](auto& p) -> double& { return (*p.edits.opticalFlowRanges)[1].start; }, 0, below(5),
         flowSentence},
        {"flow end", [](auto& p) -> double& { return (*p.edits.opticalFlowRanges)[1].end; }, above(4), 10,
         flowSentence},
        {"original start", [](auto& p) -> double& { return (*p.edits.originalFrameRanges)[1].start; }, 0, below(5),
         originalSentence},
        {"original end", [](auto& p) -> double& { return (*p.edits.originalFrameRanges)[1].end; }, above(4), 10,
         originalSentence},
    };
}

TEST(ProjectValidation, NumbersBetweenTheirBounds) {
    ASSERT_EQ(refusalAfter([](auto&) {}), "");
    for (const Bounded& each : boundedNumbers()) {
        const auto with = [&](double value) {
            return refusalAfter([&](FlowtideProject& project) { each.field(project) = value; });
        };
        EXPECT_EQ(with(each.lower), "") << each.name;
        EXPECT_EQ(with(each.upper), "") << each.name;
        EXPECT_EQ(with(below(each.lower)), each.sentence) << each.name;
        EXPECT_EQ(with(above(each.upper)), each.sentence) << each.name;
        for (const double odd : {nan, infinity, -infinity})
            EXPECT_EQ(with(odd), each.sentence) << each.name << " " << odd;
    }
}

struct Rule {
    const char* name;
    Change change;
    std::string sentence; ///< empty: passes
};

std::vector<Rule> rules() {
    RandomProjects random(6);
    const auto tracked = [](double start, double end, double last) -> Change {
        return [=](auto& p) { p.edits.trackedRanges = {{Uuid::random(), start, end, false, false, last}}; };
    };
    const auto zoom = [](double start, double end) -> Change {
        return [=](auto& p) {
            p.edits.zoomBlocks.resize(1);
            p.edits.zoomBlocks[0].startTime = start;
            p.edits.zoomBlocks[0].endTime = end;
        };
    };
    return {
        {"version 0", [](auto& p) { p.version = 0; }, versionSentence},
        {"version 2", [](auto& p) { p.version = 2; }, versionSentence},
        {"no duration", [](auto& p) { p.source.duration = 0; }, sourceSentence},
        {"negative duration", [](auto& p) { p.source.duration = -1; }, sourceSentence},
        {"NaN duration", [](auto& p) { p.source.duration = nan; }, sourceSentence},
        {"infinite duration", [](auto& p) { p.source.duration = infinity; }, sourceSentence},
        {"web clip", [](auto& p) { p.source.url.text = "https://example.org/clip.mov"; }, sourceSentence},
        {"no clip", [](auto& p) { p.source.url.text.clear(); }, sourceSentence},
        {"no fingerprint", [](auto& p) { p.source.fingerprint.clear(); }, sourceSentence},
        {"empty trim", [](auto& p) { p.edits.trimStart = p.edits.trimEnd = 5; }, valuesSentence},
        {"inverted trim", [](auto& p) { p.edits.trimStart = 6, p.edits.trimEnd = 5; }, valuesSentence},
        {"no keyframes", [](auto& p) { p.edits.keyframes.clear(); }, valuesSentence},
        {"no framing", [](auto& p) { p.edits.centerKeyframes.clear(); }, valuesSentence},
        // Not beside each other.
        {"equal keyframes", [](auto& p) { p.edits.keyframes.push_back(p.edits.keyframes[0]); }, valuesSentence},
        {"equal framing", [](auto& p) { p.edits.centerKeyframes.push_back(p.edits.centerKeyframes[0]); },
         valuesSentence},
        {"shared by both curves", [](auto& p) { p.edits.centerKeyframes[0].id = p.edits.keyframes[0].id; }, ""},
        {"unsorted keyframes", [](auto& p) { std::swap(p.edits.keyframes[0], p.edits.keyframes[1]); }, ""},
        {"preview start alone", [](auto& p) { p.edits.previewEnd.reset(); }, valuesSentence},
        {"preview end alone", [](auto& p) { p.edits.previewStart.reset(); }, valuesSentence},
        {"no preview", [](auto& p) { p.edits.previewStart.reset(), p.edits.previewEnd.reset(); }, ""},
        {"empty preview", [](auto& p) { p.edits.previewEnd = p.edits.previewStart; }, ""},
        {"equal blocks", [](auto& p) { p.edits.zoomBlocks[1].id = p.edits.zoomBlocks[0].id; }, valuesSentence},
        {"whole-clip block", zoom(0, 10), ""},
        {"empty block", zoom(5, 5), valuesSentence},
        {"early block", zoom(-0.1, 5), valuesSentence},
        {"late block", zoom(5, 10.1), valuesSentence},
        {"NaN block", zoom(5, nan), valuesSentence},
        {"equal flow ranges", [](auto& p) { (*p.edits.opticalFlowRanges)[0].id = (*p.edits.opticalFlowRanges)[1].id; },
         flowSentence},
        {"unknown selection", [](auto& p) { p.edits.selectedOpticalFlowRangeID = Uuid{}; }, flowSentence},
        {"selection of none", [](auto& p) { p.edits.opticalFlowRanges->clear(); }, flowSentence},
        {"unchecked selection", [](auto& p) { p.edits.opticalFlowRanges.reset(); }, ""},
        {"empty flow range",
         [](auto& p) { (*p.edits.opticalFlowRanges)[0].start = (*p.edits.opticalFlowRanges)[0].end; }, flowSentence},
        {"equal original ranges",
         [](auto& p) { (*p.edits.originalFrameRanges)[0] = (*p.edits.originalFrameRanges)[1]; }, ""},
        {"empty original range",
         [](auto& p) { (*p.edits.originalFrameRanges)[0].start = (*p.edits.originalFrameRanges)[0].end; },
         originalSentence},
        {"equal tracked ranges", [](auto& p) { (*p.edits.trackedRanges)[0] = (*p.edits.trackedRanges)[1]; },
         trackedSentence},
        {"tracked", tracked(0, 10, 10), ""},
        {"tracked to the start", tracked(2, 3, 2), ""},
        {"lost before", tracked(2, 3, 1.9), trackedSentence},
        {"lost after", tracked(2, 3, 3.1), trackedSentence},
        {"lost nowhere", tracked(2, 3, nan), trackedSentence},
        {"empty tracked", tracked(2, 2, 2), trackedSentence},
        {"tracked too early", tracked(-1, 3, 2), trackedSentence},
        {"tracked too late", tracked(2, 11, 3), trackedSentence},
        {"overlapping blocks",
         [](auto& p) {
             for (auto& block : p.edits.zoomBlocks)
                 if (block.startTime == 0) block.endTime += 0.001;
         },
         overlapSentence},
    };
}

TEST(ProjectValidation, EachRuleAlone) {
    for (const Rule& rule : rules())
        EXPECT_EQ(refusalAfter(rule.change), rule.sentence) << rule.name;
}

TEST(ProjectValidation, EditsAgainstNoDuration) {
    for (const double duration : {0.0, -1.0, nan, infinity})
        EXPECT_EQ(refusal([&] { validate(sample().edits, duration); }), "The project duration is invalid.");
}

TEST(ProjectValidation, TheFirstBrokenRuleIsReported) {
    const std::vector<std::pair<Change, std::string>> inOrder{
        {[](auto& p) { p.version = 2; }, versionSentence},
        {[](auto& p) { p.source.fingerprint.clear(); }, sourceSentence},
        {[](auto& p) { p.edits.playhead = 1.2; }, valuesSentence},
        {[](auto& p) { (*p.edits.originalFrameRanges)[0].end = 11; }, originalSentence},
        {[](auto& p) { (*p.edits.opticalFlowRanges)[0].end = 11; }, flowSentence},
        {[](auto& p) { (*p.edits.trackedRanges)[0].end = 11; }, trackedSentence},
        {[](auto& p) {
             for (auto& block : p.edits.zoomBlocks)
                 block.startTime = 0;
         },
         overlapSentence},
    };
    for (unsigned broken = 1; broken < 1U << inOrder.size(); ++broken) {
        std::string expected;
        const std::string actual = refusalAfter([&](FlowtideProject& project) {
            for (std::size_t i = 0; i < inOrder.size(); ++i) {
                if ((broken >> i & 1) == 0) continue;
                inOrder[i].first(project);
                if (expected.empty()) expected = inOrder[i].second;
            }
        });
        EXPECT_EQ(actual, expected) << broken;
    }
}

TEST(ProjectValidation, CountsUpToTheirLimits) {
    RandomProjects random(7);
    const auto curve = [&](std::size_t count) { return random.curve(count, 10, 0.01, 1); };
    const std::vector<std::tuple<std::size_t, std::function<void(ProjectEdits&, std::size_t)>, std::string>> limits{
        {19'999, [&](auto& edits, auto count) { edits.keyframes = curve(count); }, valuesSentence},
        {19'999, [&](auto& edits, auto count) { edits.centerKeyframes = curve(count); }, valuesSentence},
        {999, [&](auto& edits, auto count) { edits.zoomBlocks = random.zoomBlocks(count, 10, 0); }, valuesSentence},
        {19'999, [&](auto& edits, auto count) { edits.zoomBlocks = random.zoomBlocks(1, 10, count); }, valuesSentence},
        {1'000,
         [&](auto& edits, auto count) {
             edits.opticalFlowRanges = random.ranges(count, 10);
             edits.selectedOpticalFlowRangeID.reset();
         },
         flowSentence},
        {1'000, [&](auto& edits, auto count) { edits.originalFrameRanges = random.ranges(count, 10); },
         originalSentence},
        {10'000, [&](auto& edits, auto count) { edits.trackedRanges = random.trackedRanges(count, 10); },
         trackedSentence},
    };
    for (const auto& [limit, fill, sentence] : limits)
        for (const std::size_t count : {limit, limit + 1})
            EXPECT_EQ(refusalAfter([&, &set = fill](FlowtideProject& project) { set(project.edits, count); }),
                      count == limit ? "" : sentence)
                << count;
}

} // namespace
} // namespace flowtide::test
