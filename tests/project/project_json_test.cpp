// Documents survive the way to text and back bit for bit, read as other builds write them, and are refused whole when
// anything about the text is wrong.
#include "project/project_json.h"
#include "tests/project/files/refusal.h"
#include "tests/project/random_project.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <bit>

namespace flowtide::test {
namespace {

using Json = nlohmann::ordered_json;

/// The smallest document with every required key.
Json minimalDocument() {
    return Json::parse(R"({
        "version": 1, "id": "3F2504E0-4F89-41D3-9A0C-0305E82C3301", "savedAt": 700000000.25,
        "source": {"url": "file:///Users/me/My%20Clip.mov", "fingerprint": "ab", "duration": 10},
        "edits": {
            "keyframes": [{"id": "00000000-0000-0000-0000-000000000001", "time": 0, "speed": 1, "role": "curve"}],
            "smoothing": 0.5, "trimStart": 0, "trimEnd": 10,
            "centerKeyframes": [{"id": "00000000-0000-0000-0000-000000000002", "time": 0, "speed": 0.5,
                                 "role": "curve"}],
            "centerSmoothing": 0.5, "cropEnabled": false, "cropAspect": "9:16", "lockCropCenter": false,
            "zoomBlocks": [{"id": "00000000-0000-0000-0000-000000000003", "startTime": 1, "endTime": 2, "amount": 1.5,
                            "rampDuration": 0.5, "focalX": 0.5, "focalY": 0.5, "mode": "constant",
                            "focalKeyframes": [{"progress": 0, "x": 0, "y": 1}]}],
            "interpolation": "optical-flow", "previewResolution": "Full resolution", "smartCache": true, "playhead": 0,
            "timelineZoom": 1, "timelineCenter": 0.5, "loopPreview": false}})");
}

std::string refusalOf(const std::string& text) {
    return refusal([&] { decodeProject(text); });
}

void expectSortedKeys(const Json& value) {
    if (value.is_object()) {
        std::string last;
        for (const auto& [key, member] : value.items()) {
            EXPECT_LT(last, key);
            last = key;
        }
    }
    if (value.is_structured())
        for (const auto& item : value)
            expectSortedKeys(item);
}

TEST(ProjectJson, RandomDocumentsComeBackBitForBit) {
    RandomProjects random(1);
    for (int i = 0; i < 300; ++i) {
        const FlowtideProject project = random.project();
        const std::string text = encodeProject(project);
        const FlowtideProject back = decodeProject(text);
        // Equality does not tell the zeros apart; the text does.
        ASSERT_EQ(back, project);
        ASSERT_EQ(encodeProject(back), text);
    }
}

TEST(ProjectJson, NumbersKeepEveryBit) {
    RandomProjects random(2);
    FlowtideProject project = random.project();
    for (int i = 0; i < 5'000; ++i) {
        const auto bits = std::uint64_t{random.below(1U << 31)} << 33 ^ std::uint64_t{random.below(1U << 31)} << 16 ^
                          random.below(1U << 16);
        project.savedAt.seconds = std::bit_cast<double>(bits);
        if (!std::isfinite(project.savedAt.seconds)) continue;
        project.edits = {};
        project.edits.trimEnd = 0.5;
        project.edits.keyframes.resize(1);
        project.edits.centerKeyframes.resize(1);
        const double back = decodeProject(encodeProject(project)).savedAt.seconds;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(back), bits);
    }
    for (const double odd : {-0.0, 1e22, 1e300, 5e-324, 1.7976931348623157e308, 18446744073709551616.0, -1e19, 0.1}) {
        project.savedAt.seconds = odd;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(decodeProject(encodeProject(project)).savedAt.seconds),
                  std::bit_cast<std::uint64_t>(odd));
    }
}

TEST(ProjectJson, TheFormOfTheText) {
    FlowtideProject project = decodeProject(minimalDocument().dump());
    project.source.bookmark = Bookmark{"/+AA"};
    project.edits.selectedOpticalFlowRangeID = project.id;
    const Json written = Json::parse(encodeProject(project));
    expectSortedKeys(written);
    // Beyond the new values: what was read, nothing more, no null.
    Json expected = minimalDocument();
    expected["source"]["bookmark"] = "/+AA";
    expected["edits"]["selectedOpticalFlowRangeID"] = "3F2504E0-4F89-41D3-9A0C-0305E82C3301";
    const auto sorted = [](const Json& value) { return nlohmann::json::parse(value.dump()); };
    EXPECT_EQ(sorted(written), sorted(expected));
    EXPECT_NE(encodeProject(project).find("\n  \"edits\": {\n"), std::string::npos);
}

TEST(ProjectJson, ReadsWhatOtherBuildsWrite) {
    Json document = minimalDocument();
    document["version"] = 1.0;
    document["id"] = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";
    document["future"] = {{"deep", {1, {{"deeper", nullptr}}}}};
    document["edits"]["keyframes"][0]["note"] = "text";
    document["edits"]["previewStart"] = nullptr;
    document["edits"]["opticalFlowRanges"] = nullptr;
    document["edits"]["trackedRanges"] = Json::array();
    const FlowtideProject project = decodeProject(document.dump());
    EXPECT_EQ(project.id.text(), "3F2504E0-4F89-41D3-9A0C-0305E82C3301");
    EXPECT_EQ(project.source.url.filePath(), "/Users/me/My Clip.mov");
    EXPECT_FALSE(project.edits.previewStart);
    EXPECT_FALSE(project.edits.opticalFlowRanges);
    EXPECT_TRUE(project.edits.trackedRanges);
    // Slashes may be escaped, whole numbers lack a fraction, zeros have a sign, and what is not ours to know is kept.
    auto replaced = [text = minimalDocument().dump()](const std::string& from, const std::string& to) mutable {
        return decodeProject(text.replace(text.find(from), from.size(), to));
    };
    const std::string url = "file:///Users/me/My%20Clip.mov";
    EXPECT_EQ(replaced(url, R"(file:\/\/\/Users\/me\/My%20Clip.mov","bookmark":"Ym9v\/w==)").source.url.text, url);
    EXPECT_TRUE(std::signbit(replaced("\"playhead\":0", "\"playhead\":-0").edits.playhead));
    const FlowtideProject whole = replaced("700000000.25", "700000000");
    EXPECT_EQ(whole.savedAt.seconds, 7e8);
    EXPECT_EQ(Json::parse(encodeProject(whole))["source"]["bookmark"], "Ym9v/w==");
}

TEST(ProjectJson, EveryRequiredKeyIsMissed) {
    const Json whole = minimalDocument();
    int removed = 0;
    for (const char* record : {"", "/source", "/edits", "/edits/keyframes/0", "/edits/centerKeyframes/0",
                               "/edits/zoomBlocks/0", "/edits/zoomBlocks/0/focalKeyframes/0"}) {
        const Json::json_pointer pointer(record);
        for (const auto& [key, value] : whole[pointer].items()) {
            Json document = whole;
            document[pointer].erase(key);
            EXPECT_EQ(refusalOf(document.dump()), "The project file is damaged: \"" + key + "\" is missing.");
            document = whole;
            document[pointer][key] = value.is_array() ? Json::object() : Json::array();
            EXPECT_NE(refusalOf(document.dump()), "") << key << " of another type";
            document[pointer][key] = nullptr;
            EXPECT_NE(refusalOf(document.dump()), "") << key << " null";
            document[pointer][key] = "other";
            if (key != "fingerprint") {
                EXPECT_NE(refusalOf(document.dump()), "") << key << " of another name";
            }
            ++removed;
        }
    }
    EXPECT_EQ(removed, 5 + 3 + 17 + 4 + 4 + 9 + 3);
}

TEST(ProjectJson, DamagedTextsAreRefused) {
    const std::string whole = minimalDocument().dump();
    ASSERT_EQ(refusalOf(whole), "");
    EXPECT_EQ(refusalOf(whole + " \n"), "");
    const auto replaced = [&](const std::string& from, const std::string& to) {
        std::string text = whole;
        return text.replace(text.find(from), from.size(), to);
    };
    const std::string smoothing = "\"smoothing\":0.5";
    for (const std::string& text : {
             whole + "x",
             whole + "{}",
             whole + std::string(1, '\0'),
             whole + std::string(1, '\0') + "{}",
             std::string(),
             std::string("null"),
             std::string("[]"),
             std::string("1"),
             replaced(smoothing, "\"smoothing\":NaN"),
             replaced(smoothing, "\"smoothing\":Infinity"),
             replaced(smoothing, "\"smoothing\":1e999"),
             replaced(smoothing, "\"other\":1e999," + smoothing),
             replaced(smoothing, "\"smoothing\":true"),
             replaced(smoothing, "\"smoothing\":\"0.5\""),
             replaced(smoothing, smoothing + "," + smoothing),
             replaced(smoothing, smoothing + ",\"\\u0073moothing\":0.5"),
             replaced(smoothing, smoothing + ",\"other\":1,\"other\":1"),
             replaced(smoothing, smoothing + ",\"other\":[{\"a\":1,\"b\":{},\"a\":1}]"),
             replaced("\"version\":1", "\"version\":1.5"),
             replaced("\"version\":1", "\"version\":1e300"),
             replaced("\"version\":1", "\"version\":1,\"version\":1"),
             replaced("\"source\":{", "\"source\":{\"bookmark\":\"no base 64\","),
             replaced("\"source\":{", "\"source\":{\"bookmark\":\"A===\","),
             replaced("\"ab\"", "\"\xFF\""),
             replaced(smoothing, smoothing + ",\"other\":" + std::string(100'000, '[')),
             replaced(smoothing, smoothing + ",\"other\":" + std::string(600, '[') + std::string(600, ']')),
         })
        EXPECT_EQ(refusalOf(text).find("The project file is damaged: "), 0U) << text.substr(0, 200);
    EXPECT_EQ(refusalOf(replaced("\"version\":1", "\"version\":9007199254740991")),
              "This project requires a different version of Loftwell Video."); // the largest whole number that is read
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_NE(refusalOf(whole.substr(0, length)), "") << length;
    // The same key may well occur in different objects.
    EXPECT_EQ(refusalOf(replaced(smoothing, smoothing + ",\"other\":[{\"a\":1,\"b\":{\"a\":2}},{\"a\":1}]")), "");
}

TEST(ProjectJson, WhatCannotBeReadAgainIsNotWritten) {
    RandomProjects random(3);
    const auto encoding = [&](auto change) {
        FlowtideProject project = random.project();
        change(project);
        return refusal([&] { encodeProject(project); });
    };
    EXPECT_EQ(encoding([](auto& project) { project.savedAt.seconds = std::nan(""); }),
              "The project holds a number that cannot be stored.");
    EXPECT_EQ(encoding([](auto& project) { project.source.bookmark = Bookmark{"?"}; }),
              "The project's bookmark cannot be stored.");
    EXPECT_EQ(encoding([](auto& project) { project.version = 2; }),
              "This project requires a different version of Loftwell Video.");
    EXPECT_EQ(encoding([&](auto& project) {
                  project.edits.zoomBlocks = random.zoomBlocks(20, project.source.duration, 19'999);
              }),
              "The project is too large to be stored.");
}

TEST(ProjectJson, TheLargestDocumentsFit) {
    RandomProjects random(4);
    FlowtideProject project = random.project();
    const double duration = project.source.duration;
    project.edits.keyframes = random.curve(19'999, duration, 0.01, 100);
    project.edits.centerKeyframes = random.curve(19'999, duration, 0, 1);
    project.edits.zoomBlocks = random.zoomBlocks(999, duration, 10);
    project.edits.opticalFlowRanges = random.ranges(1'000, duration);
    project.edits.selectedOpticalFlowRangeID = project.edits.opticalFlowRanges->front().id;
    project.edits.originalFrameRanges = random.ranges(1'000, duration);
    project.edits.trackedRanges = random.trackedRanges(10'000, duration);
    const std::string text = encodeProject(project);
    EXPECT_EQ(decodeProject(text), project);
}

TEST(ProjectJson, TheRecentListKeepsItsForm) {
    const RecentProjects list{{Uuid::random(), "clip \"ü\" \\.mov", Url::ofFile("/a b"), "ab", {0.1}},
                              {Uuid::random(), "", {"https://example.org"}, "", {-5}}};
    const std::string text = encodeRecentProjects(list);
    EXPECT_EQ(decodeRecentProjects(text), list);
    expectSortedKeys(Json::parse(text));
    EXPECT_EQ(Json::parse(text)[0]["projectURL"], "file:///a%20b");
    // A file name need not be UTF-8; the list must be.
    EXPECT_EQ(decodeRecentProjects(encodeRecentProjects({{{}, "\xFF", {}, "", {}}}))[0].name, "\xEF\xBF\xBD");
    for (const char* damaged : {"", "{}", "[{}]", "[1]", "[", "[]]"})
        EXPECT_NE(refusal([&] { decodeRecentProjects(damaged); }), "") << damaged;
}

} // namespace
} // namespace flowtide::test
