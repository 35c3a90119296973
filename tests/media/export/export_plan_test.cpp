// What a plan refuses before anything is written.
#include "media/export/export_plan.h"
#include "media/flowtide_error.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace flowtide::test {
namespace {

class ExportPlanTest : public testing::Test {
protected:
    ExportPlanTest() { writeFile(folder_ / "in.mov", "source"); }

    ExportRequest requestFor(const ProbedMedia& media) {
        MediaScript script;
        script.source = media;
        ExportRequest request;
        request.clip = ImportedClip::load(ScriptedBackend(script), folder_ / "in.mov");
        return request;
    }

    /// Plans; the error's text, or nothing.
    std::string refusal(const ExportRequest& request) {
        log_.clear();
        try {
            planExport(request, [this](std::string_view line) { log_ += std::string(line) + "\n"; });
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    }

    TemporaryFolder folder_;
    std::string log_;
};

TEST_F(ExportPlanTest, WhatCouldNotPassVerificationIsRefused) {
    const auto failed = [](const std::string& text) {
        return "Export validation failed: " + text + ". The destination file was left untouched.";
    };
    const struct {
        const char* name;
        std::function<void(VideoTrack&)> change;
        std::string sentence;
    } cases[] = {
        {"8-bit H.264", [](auto&) {}, ""},
        {"10-bit HEVC", [](auto& track) { track.codec = fourCC("hvc1"), track.bitDepth = 10; }, ""},
        {"ProRes 422", [](auto& track) { track.codec = fourCC("apcn"), track.bitDepth = 10; }, ""},
        {"ProRes 4444", [](auto& track) { track.codec = fourCC("ap4h"), track.bitDepth = 12; }, ""},
        {"12-bit HEVC", [](auto& track) { track.codec = fourCC("hvc1"), track.bitDepth = 12; },
         failed("video is 10-bit, expected 12")},
        {"ProRes 4444 XQ", [](auto& track) { track.codec = fourCC("ap4x"), track.bitDepth = 12; },
         failed("video is 10-bit, expected 12")},
        {"16-bit", [](auto& track) { track.codec = fourCC("FFV1"), track.bitDepth = 16; },
         failed("video is 10-bit, expected 16")},
        {"half a frame a second",
         [](auto& track) { track.nominalFrameRate = 0.5, track.constantSampleInterval = std::nullopt; },
         failed("frame rate is 0.999fps, expected 0.5")},
        {"a frame every other second",
         [](auto& track) {
             track.nominalFrameRate = 0.5, track.constantSampleInterval = MediaTime{2, 1};
         },
         ""},
    };
    for (const auto& [name, change, sentence] : cases) {
        ProbedMedia media = plainProbe();
        change(*media.video);
        EXPECT_EQ(refusal(requestFor(media)), sentence) << name;
    }
}

} // namespace
} // namespace flowtide::test
