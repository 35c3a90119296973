// A clip that flashes and clicks, played along a ramp: flash and click are presented together, whatever the device
// does.
#include "media/player/device_clock.h"
#include "media/player/null_audio_output.h"
#include "tests/media/player/player_stage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace flowtide::test {
namespace {

constexpr int sampleRate = 48'000;
constexpr double clipSeconds = 8;
constexpr std::int64_t framesBetweenEvents = 10;
constexpr double refreshSeconds = 1.0 / 480; // fine, so that what is measured is not the refresh

/// Clicks of 1 ms, each louder than the one before, at the frames that count as flashes.
std::shared_ptr<const AudioData> clicks() {
    auto audio = std::make_shared<AudioData>();
    audio->sampleRate = sampleRate;
    audio->channels = 1;
    audio->samples.resize(static_cast<std::size_t>(clipSeconds * sampleRate));
    for (std::size_t i = 0; i < audio->samples.size(); ++i)
        if (i % (framesBetweenEvents * sampleRate / 25) < sampleRate / 1000) audio->samples[i] = 1;
    return audio;
}

/// Speed 1, then a quarter, then four times, in segments whose ends are whole ticks, and the map that tells the same.
PlaybackItem rampItem() {
    PlaybackItem item = stageItem(clipSeconds);
    item.media.asset.video.clear();
    std::vector<TimeMap::Entry> entries{{0, 0}};
    CompositionTime output;
    constexpr int segments = 400;
    for (int i = 0; i < segments; ++i) {
        const double share = static_cast<double>(i) / segments;
        const double speed = share < 0.5 ? 1 - 1.5 * share : 0.25 + (share - 0.5) * 7.5;
        const CompositionTime start{i * 1200}; // a fiftieth of a second
        const CompositionTime end{start.ticks + 1200};
        const CompositionTime next{output.ticks + std::llround(1200 / speed)};
        item.media.asset.video.push_back({0, start, end, output, next});
        entries.push_back({end.seconds(), next.seconds()});
        output = next;
    }
    item.media.timeMap = TimeMap(entries, {0, clipSeconds}, output.seconds());
    item.sound = clicks();
    return item;
}

/// A device on the virtual clock that notes when each click is heard. It asks for a chunk whenever the one before has
/// been played, except while it stalls.
class NotingDevice final : public AudioOutput {
public:
    struct Stall {
        double from, to; ///< seconds since the device began to play
    };
    NotingDevice(AudioPull pull, const VirtualClock& clock, double latency, std::optional<Stall> stall,
                 std::vector<double>& heardAt)
        : pull_(std::move(pull))
        , clock_(clock)
        , latency_(latency)
        , stall_(stall)
        , heardAt_(heardAt)
        , device_(sampleRate, latency) {}

    void start() override {
        if (!begin_) begin_ = clock_.seconds();
        nextRequest_ = clock_.seconds();
    }
    void pause() override {
        nextRequest_.reset();
        device_.pause(clock_.seconds());
    }
    double heardFrames() override {
        while (nextRequest_ && *nextRequest_ <= clock_.seconds() + 1e-9) {
            const double since = *nextRequest_ - *begin_;
            if (stall_ && since >= stall_->from && since < stall_->to - 1e-9) {
                nextRequest_ = *begin_ + stall_->to;
                continue;
            }
            request(*nextRequest_);
            nextRequest_ = *nextRequest_ + static_cast<double>(chunk_.size()) / sampleRate;
        }
        return device_.heard(clock_.seconds());
    }

private:
    void request(double time) {
        device_.requested(static_cast<std::int64_t>(chunk_.size()), time);
        pull_(chunk_);
        for (std::size_t i = 0; i < chunk_.size(); ++i) {
            const bool isLoud = chunk_[i] > 0.5F;
            if (isLoud && !wasLoud_) heardAt_.push_back(time + latency_ + static_cast<double>(i) / sampleRate);
            wasLoud_ = isLoud;
        }
    }

    const AudioPull pull_;
    const VirtualClock& clock_;
    const double latency_;
    const std::optional<Stall> stall_;
    std::vector<double>& heardAt_;
    DeviceClock device_;
    std::vector<float> chunk_ = std::vector<float>(1024);
    std::optional<double> begin_;
    std::optional<double> nextRequest_;
    bool wasLoud_ = false;
};

struct Case {
    const char* what;
    double rate;
    double latency;
    std::optional<NotingDevice::Stall> stall;
};

TEST(SoundAndPicture, FlashAndClickComeTogether) {
    for (const Case& c : {
             Case{"plain", 1, 0, std::nullopt},
             Case{"late", 1, 0.12, std::nullopt},
             Case{"stalls", 1, 0.03, NotingDevice::Stall{2.01, 2.61}},
             Case{"faster", 2, 0.05, std::nullopt},
             Case{"backwards", -1, 0.05, NotingDevice::Stall{1, 1.3}},
         }) {
        std::vector<double> clickTimes;
        const VirtualClock* clock = nullptr;
        PlayerStage stage({}, [&](AudioFormat format, AudioPull pull) -> std::unique_ptr<AudioOutput> {
            EXPECT_EQ(format, (AudioFormat{sampleRate, 1}));
            return std::make_unique<NotingDevice>(std::move(pull), *clock, c.latency, c.stall, clickTimes);
        });
        clock = &stage.clock;
        stage.setItem(rampItem());
        const double start = c.rate > 0 ? 0.1 : stage.player->duration().value - 0.01;
        ASSERT_TRUE(stage.seekAndWait(start));
        ASSERT_TRUE(stage.playAndWait(c.rate));
        std::vector<double> flashTimes;
        std::int64_t last = stage.number();
        while (stage.player->rate() != 0) {
            stage.tick(refreshSeconds);
            ASSERT_TRUE(stage.waitForDueFrame());
            const std::int64_t now = stage.number();
            // Forwards a click comes as its frame appears, backwards as it goes.
            const std::int64_t passed = c.rate > 0 ? now : last;
            if (now != last && passed % framesBetweenEvents == 0) flashTimes.push_back(stage.clock.seconds());
            last = now;
        }
        ASSERT_GE(flashTimes.size(), 18U) << c.what;
        ASSERT_GE(clickTimes.size(), flashTimes.size()) << c.what;
        for (std::size_t i = 0; i < flashTimes.size(); ++i) {
            // A refresh comes up to its interval late. Backwards a click begins with its end: 4 ms at a quarter of the
            // speed.
            const double latest = refreshSeconds + (c.rate > 0 ? 0 : 0.004) + 0.0005;
            EXPECT_GE(flashTimes[i] - clickTimes[i], -0.0005) << c.what << " " << i;
            EXPECT_LE(flashTimes[i] - clickTimes[i], latest) << c.what << " " << i;
        }
    }
}

TEST(SoundAndPicture, ADeadDeviceDoesNotStopThePictureAndIsTriedAgain) {
    for (const bool comesBack : {true, false}) {
        std::vector<double> clickTimes;
        int opened = 0;
        const VirtualClock* clock = nullptr;
        PlayerStage stage({}, [&](AudioFormat, AudioPull pull) {
            std::optional<NotingDevice::Stall> stall = NotingDevice::Stall{opened == 0 ? 1.0 : 0, 1e9};
            if (opened++ == 1 && comesBack) stall.reset();
            return std::make_unique<NotingDevice>(std::move(pull), *clock, 0.02, stall, clickTimes);
        });
        clock = &stage.clock;
        stage.setItem(rampItem());
        ASSERT_TRUE(stage.seekAndWait(0));
        ASSERT_TRUE(stage.playAndWait(1));
        for (int i = 0; i < 120; ++i)
            stage.tick();
        const double stalled = stage.player->currentTime().value;
        EXPECT_NEAR(stalled, 1, 0.05);
        for (int i = 0; i < 30; ++i)
            stage.tick();
        const double position = stage.player->currentTime().value;
        stage.tick(2);
        EXPECT_NEAR(stage.player->currentTime().value, position + 2, 1e-6);
        EXPECT_GT(position, stalled);
        EXPECT_EQ(opened, 1);

        const std::size_t clicks = clickTimes.size();
        for (int play = 0; play < 2; ++play) {
            stage.player->pause();
            ASSERT_TRUE(stage.playAndWait(1));
            for (int i = 0; i < 75; ++i)
                stage.tick();
        }
        EXPECT_EQ(opened, 2) << "but not for ever";
        EXPECT_EQ(clickTimes.size() > clicks, comesBack);
    }
}

TEST(SoundAndPicture, PauseSeekAndEditKeepThemTogether) {
    PlayerStage stage; // no device: heard by nobody, at the clock's pace
    stage.setItem(rampItem());
    ASSERT_TRUE(stage.seekAndWait(1));
    ASSERT_TRUE(stage.playAndWait(1));
    stage.tick(0.5);
    EXPECT_NEAR(stage.player->currentTime().value, 1.5, 1e-4);
    stage.player->pause();
    stage.tick(3);
    EXPECT_NEAR(stage.player->currentTime().value, 1.5, 1e-4);
    ASSERT_TRUE(stage.playAndWait(-0.5));
    stage.tick(1);
    EXPECT_NEAR(stage.player->currentTime().value, 1, 1e-4);
    stage.player->play(-1); // while it plays
    stage.tick(0.5);
    EXPECT_NEAR(stage.player->currentTime().value, 0.5, 0.01);
    stage.player->seek({4});
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return stage.player->rate() != 0; }));
    stage.tick(1);
    EXPECT_NEAR(stage.player->currentTime().value, 3, 1e-4);
    stage.setItem(rampItem());
    stage.tick(1);
    EXPECT_NEAR(stage.player->currentTime().value, 2, 1e-4);
    PlaybackItem silent = rampItem();
    silent.sound = nullptr;
    stage.setItem(silent);
    stage.tick(0.5);
    EXPECT_NEAR(stage.player->currentTime().value, 1.5, 1e-4);
    stage.setItem(rampItem());
    stage.tick(0.5);
    EXPECT_NEAR(stage.player->currentTime().value, 1, 1e-4);
}

} // namespace
} // namespace flowtide::test
