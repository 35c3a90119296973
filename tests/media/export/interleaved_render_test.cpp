// The workers of a render: near to each other while all is well, and gone when anything fails.
#include "media/export/interleaved_render.h"
#include "media/flowtide_error.h"
#include "tests/support/scripted_media.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace flowtide::test {
namespace {

constexpr double slackSeconds = 2; // by how much a track may be ahead
constexpr double frameSeconds = 0.04;

/// One frame for ever.
class EndlessReader : public VideoReader {
public:
    std::optional<TimedFrame> next() override {
        return TimedFrame{picture_, {frameSeconds * static_cast<double>(n_++)}};
    }
    int concealedFrameCount() const override { return 0; }

private:
    VideoFrame picture_ = numberedFrame({}, 16, 16, 0);
    std::int64_t n_ = 0;
};

/// Counts what is written; its hooks may wait or throw.
class CountingWriter : public MovieWriter {
public:
    void addVideo(const VideoSettings&) override {}
    void addAudio(const AudioSettings&) override {}
    void start() override {}
    void appendVideo(const VideoFrame&, std::int64_t index, std::int64_t) override {
        if (onVideo) onVideo(frameSeconds * static_cast<double>(index));
        frames = index + 1;
    }
    void appendAudio(std::span<const float> samples) override {
        if (onAudio) onAudio(seconds());
        sampleCount += static_cast<std::int64_t>(samples.size());
    }
    void finishVideo() override {
        if (onFinishVideo) onFinishVideo();
        videoFinished = true;
    }
    void finishAudio() override { audioFinished = true; }
    void finish() override {}

    double seconds() const { return static_cast<double>(sampleCount) / sampleRate; } ///< of sound
    double sampleRate = 0;
    std::atomic<std::int64_t> frames = 0;
    std::atomic<std::int64_t> sampleCount = 0;
    std::atomic<bool> videoFinished = false;
    std::atomic<bool> audioFinished = false;
    std::function<void(double seconds)> onVideo; ///< before a frame that is shown at a time
    std::function<void(double seconds)> onAudio; ///< before a chunk that is heard at a time
    std::function<void()> onFinishVideo;
};

class InterleavedRenderTest : public testing::Test {
protected:
    InterleavedRenderTest() { prepare(40, 8192); } // a chunk of sound is a second

    void prepare(std::int64_t seconds, std::int64_t sampleRate) {
        const auto end = static_cast<double>(seconds);
        total_ = seconds * sampleRate;
        audio_ = {std::vector<float>(static_cast<std::size_t>(total_)), static_cast<double>(sampleRate), 1, 0};
        writer_.sampleRate = audio_.sampleRate;
        plan_.timeMap = TimeMap({{0, 0}, {end, end}}, {0, end}, end);
        plan_.video.frameDuration = {1, 25};
        plan_.frameCount = 25 * seconds;
    }

    void render(
        const ProgressHandler& onProgress = [](double) {}, const ThreadStarter& start = startThread) {
        renderInterleaved(
            {plan_, reader_, nullptr, hasSound_ ? &audio_ : nullptr, writer_}, [](std::string_view) {}, onProgress,
            [this] { return cancelled_.load(); }, start);
    }

    void expectStopped() {
        EXPECT_LT(writer_.frames, plan_.frameCount);
        EXPECT_LT(writer_.sampleCount, total_);
        EXPECT_FALSE(writer_.videoFinished);
    }

    ExportPlan plan_;
    AudioData audio_;
    bool hasSound_ = true;
    std::int64_t total_ = 0; // samples
    EndlessReader reader_;
    CountingWriter writer_;
    std::atomic<bool> cancelled_ = false;
};

TEST_F(InterleavedRenderTest, NoTrackRunsFurtherAheadThanTheSlack) {
    std::atomic<double> furthestVideo = 0;
    std::atomic<double> furthestAudio = 0;
    const auto note = [](std::atomic<double>& furthest, double ahead) {
        if (ahead > furthest) furthest = ahead;
    };
    // In the first half the sound waits until the pictures are as far ahead as they may be, in the second the
    // pictures wait for the sound; what is not held back is far beyond by the time that is noticed.
    writer_.onVideo = [&](double seconds) {
        note(furthestVideo, seconds - writer_.seconds());
        if (seconds >= 20)
            while (writer_.seconds() < std::min(seconds + slackSeconds, 40.0))
                std::this_thread::yield();
    };
    writer_.onAudio = [&](double seconds) {
        note(furthestAudio, seconds - frameSeconds * static_cast<double>(writer_.frames));
        if (seconds < 18)
            while (frameSeconds * static_cast<double>(writer_.frames) < seconds + slackSeconds)
                std::this_thread::yield();
    };
    render();
    EXPECT_EQ(writer_.frames, 1000);
    EXPECT_EQ(writer_.sampleCount, total_);
    EXPECT_TRUE(writer_.videoFinished && writer_.audioFinished);
    EXPECT_NEAR(furthestVideo, slackSeconds, frameSeconds + 1e-9);
    EXPECT_NEAR(furthestAudio, slackSeconds, 1 + 1e-9); // chunks of a second
}

TEST_F(InterleavedRenderTest, AThreadThatCannotBeMadeEndsTheRender) {
    const auto caller = std::this_thread::get_id();
    const auto inTheGate = std::llround(slackSeconds / frameSeconds) + 1; // frames after which the pictures must wait
    for (const char* refused : {"pictures", "sound", "producer"}) {
        writer_.frames = 0;
        int made = 0; // by the calling thread
        const ThreadStarter start = [&](std::function<void()> body) {
            const std::string wanted = std::this_thread::get_id() != caller ? "producer"
                                       : made++ == 0                        ? "pictures"
                                                                            : "sound";
            if (wanted != refused) return startThread(std::move(body));
            while (wanted == "sound" && writer_.frames < inTheGate)
                std::this_thread::yield();
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        };
        try {
            render([](double) {}, start);
            ADD_FAILURE() << refused;
        } catch (const FlowtideError& error) {
            EXPECT_STREQ(error.what(), "Asset writer failed: Could not start a thread for the export: Resource "
                                       "temporarily unavailable (error 11)");
        }
        EXPECT_FALSE(writer_.videoFinished) << refused;
    }
}

TEST_F(InterleavedRenderTest, AFailureOfOneTrackStopsTheOther) {
    const auto failing = [](double seconds) {
        if (seconds >= 1) throw std::out_of_range("in a worker");
    };
    for (auto* hook : {&writer_.onVideo, &writer_.onAudio}) {
        *hook = failing;
        EXPECT_THROW(render(), std::out_of_range);
        expectStopped();
        *hook = {};
        writer_.frames = 0;
        writer_.sampleCount = 0;
    }
}

TEST_F(InterleavedRenderTest, WhatTheProgressHandlerThrowsStopsTheRenderAndReachesTheCaller) {
    prepare(10'000, 64); // far more than can be written before the workers are told
    std::atomic<bool> reported = false;
    writer_.onAudio = [&](double) {
        while (!reported)
            std::this_thread::yield();
    };
    EXPECT_THROW(render([&](double) {
                     reported = true;
                     throw std::out_of_range("in the progress handler");
                 }),
                 std::out_of_range);
    expectStopped();
}

TEST_F(InterleavedRenderTest, ProgressIsReportedUntilTheLastWorkerHasEnded) {
    std::atomic<int> reports = 0;
    int before = 0;
    writer_.onAudio = [&](double seconds) {
        if (seconds < 39) return;
        while (!writer_.videoFinished) // the sound is the last to end
            std::this_thread::yield();
        before = reports;
        while (reports == before)
            std::this_thread::yield();
    };
    std::vector<double> reported;
    render([&](double fraction) {
        reported.push_back(fraction);
        ++reports;
    });
    EXPECT_TRUE(std::is_sorted(reported.begin(), reported.end()));
    EXPECT_LT(reported.front(), 1);
    EXPECT_EQ(reported.back(), 1);
}

TEST_F(InterleavedRenderTest, IsNotDoneBeforeTheEncoderIs) {
    hasSound_ = false;
    std::atomic<int> reports = 0;
    writer_.onFinishVideo = [&] {
        for (const int before = reports; reports < before + 2;)
            std::this_thread::yield();
    };
    double last = 0;
    render([&](double fraction) {
        last = fraction;
        EXPECT_TRUE(fraction < 1 || writer_.videoFinished);
        ++reports;
    });
    EXPECT_EQ(last, 1);
}

TEST_F(InterleavedRenderTest, CancellationStopsBothTracks) {
    writer_.onAudio = [&](double seconds) { cancelled_ = seconds >= 10; };
    try {
        render();
        ADD_FAILURE();
    } catch (const FlowtideError& error) {
        EXPECT_EQ(error.kind(), FlowtideError::Case::exportCancelled);
    }
    expectStopped();
}

} // namespace
} // namespace flowtide::test
