// What a device is given to play, and what is heard of it.
#include "core/curve_engine.h"
#include "media/player/sound_feed.h"
#include "tests/support/clip_maker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace flowtide::test {
namespace {

constexpr double rate = 8000;

/// Two seconds of a sweep at a changing speed.
PlayableSound sweep(std::int64_t channels) {
    auto audio = std::make_shared<AudioData>();
    audio->sampleRate = rate;
    audio->channels = channels;
    for (int n = 0; n < 2 * static_cast<int>(rate); ++n)
        for (int c = 0; c < static_cast<int>(channels); ++c)
            audio->samples.push_back(static_cast<float>(chirp(n / rate, c)));
    SpeedKeyframes keyframes;
    for (const auto& [time, speed] : {std::pair{0.0, 1.0}, {0.7, 0.25}, {1.4, 3.0}, {2.0, 1.0}})
        keyframes.push_back({Uuid::random(), time, speed});
    return {audio, std::make_shared<TimeMap>(CurveEngine::buildTimeMap(keyframes, 2, std::nullopt, 1000, 0.5))};
}

/// The whole retimed sound, as an export has it.
std::vector<float> retimed(const PlayableSound& sound) {
    AudioRetimer retimer(*sound.audio, *sound.timeMap);
    std::vector<float> all(static_cast<std::size_t>(retimer.totalFrames() * sound.audio->channels));
    retimer.render(0, all);
    return all;
}

TEST(SoundFeed, PlaysTheRetimedSoundAtEveryRate) {
    const PlayableSound sound = sweep(2);
    const std::vector<float> all = retimed(sound);
    const auto frames = static_cast<std::int64_t>(all.size()) / 2;
    for (const auto& [speed, start] : {std::pair{1.0, 0.25},
                                       {2.0, 0.5},
                                       {8.0, 0.0},
                                       {-1.0, 1.5},
                                       {-4.0, 2.0},
                                       {1.0, 1e6},
                                       {1.0, -0.125},
                                       {0.0, 1.0}}) {
        SoundFeed feed({static_cast<int>(rate), 2});
        feed.setSound(sound);
        feed.playFrom({start}, speed);
        std::vector<float> out(2 * 3000);
        feed.pull(std::span(out).first(2 * 700));
        feed.pull(std::span(out).subspan(2 * 700));
        for (std::int64_t n = 0; n < 3000; ++n) {
            const auto at = std::llround(start * rate) + n * static_cast<std::int64_t>(speed);
            const bool silent = at < 0 || at >= frames || speed == 0;
            for (std::int64_t c = 0; c < 2; ++c)
                ASSERT_NEAR(out[static_cast<std::size_t>(2 * n + c)],
                            silent ? 0 : all[static_cast<std::size_t>(2 * at + c)], 1e-6)
                    << "sample " << n << " from " << start << " at " << speed;
        }
    }
}

TEST(SoundFeed, GoesOnWithoutAJumpWhenRateOrSoundChange) {
    const PlayableSound sound = sweep(1);
    const std::vector<float> all = retimed(sound);
    SoundFeed feed({static_cast<int>(rate), 1});
    feed.setSound(sound);
    feed.playFrom({0.5}, 1);
    std::vector<float> out(300);
    feed.pull(std::span(out).first(100)); // 4000 … 4099
    feed.setRate(2);
    feed.pull(std::span(out).subspan(100, 100)); // 4100, 4102 … 4298
    feed.setSound(sweep(1));
    feed.setRate(-1);
    feed.pull(std::span(out).subspan(200)); // 4300, 4299 …
    EXPECT_NEAR(out[99], all[4099], 1e-6);
    EXPECT_NEAR(out[100], all[4100], 1e-6);
    EXPECT_NEAR(out[199], all[4298], 1e-6);
    EXPECT_NEAR(out[200], all[4300], 1e-6);
    EXPECT_NEAR(out[299], all[4201], 1e-6);
}

TEST(SoundFeed, TellsWhatIsHeardAcrossRatesAndJumps) {
    SoundFeed feed({1000, 1});
    std::vector<float> chunk(100);
    feed.playFrom({5}, 1);
    feed.pull(chunk);
    feed.setRate(2);
    feed.pull(chunk);
    EXPECT_NEAR(feed.positionAt(0).value, 5, 1e-12);
    EXPECT_NEAR(feed.positionAt(60).value, 5.06, 1e-12);
    EXPECT_NEAR(feed.positionAt(150).value, 5.2, 1e-12) << "50 ms at twice the speed";
    feed.playFrom({1}, -1);
    EXPECT_NEAR(feed.positionAt(150).value, 1, 1e-12) << "nothing of it is heard yet";
    feed.pull(chunk);
    EXPECT_NEAR(feed.positionAt(250).value, 0.95, 1e-12);

    // Many changes in one latency: the newest count.
    for (int i = 0; i < 40; ++i) {
        feed.setRate(i % 2 == 0 ? 1 : 2);
        feed.setRate(i % 2 == 0 ? 2 : 1); // the one before was never pulled
        feed.pull(chunk);
    }
    EXPECT_NEAR(feed.positionAt(4300).value, 0.9 + 20 * 0.2 + 20 * 0.1, 1e-9);
    EXPECT_NEAR(feed.positionAt(4150).value, 0.9 + 20 * 0.2 + 20 * 0.1 - 0.1 - 0.1, 1e-9);
}

TEST(SoundFeed, FitsTheDevice) {
    for (const auto& [clip, device] : {std::pair{1, 1}, {2, 2}, {3, 2}, {5, 2}, {6, 6}, {8, 8}, {16, 2}})
        EXPECT_EQ(deviceChannels(clip), device);

    // A device with a rate and channels of its own.
    for (const int clipChannels : {1, 3}) {
        const PlayableSound sound = sweep(clipChannels);
        const std::vector<float> all = retimed(sound);
        SoundFeed feed({static_cast<int>(rate) * 2, 2});
        feed.setSound(sound);
        feed.playFrom({0.5}, 1);
        std::vector<float> out(2 * 2000);
        feed.pull(out);
        for (std::size_t n = 0; n < 2000; n += 2)
            for (std::size_t c = 0; c < 2; ++c) {
                const std::size_t from = clipChannels == 1 ? 0 : c;
                const float expected = all[(4000 + n / 2) * static_cast<std::size_t>(clipChannels) + from];
                ASSERT_NEAR(out[2 * n + c], expected, 1e-6) << clipChannels << " " << n;
            }
    }

    SoundFeed empty({1000, 2});
    std::vector<float> out(64, 1);
    empty.playFrom({0}, 1);
    empty.pull(out);
    EXPECT_EQ(out, std::vector<float>(64, 0));
    EXPECT_NEAR(empty.positionAt(32).value, 0.032, 1e-12) << "silence takes its time too";
}

TEST(SoundFeed, GoesOnWhileItIsMuted) {
    const PlayableSound sound = sweep(2);
    const auto pulled = [&](bool mutesAtFirst) {
        SoundFeed feed({static_cast<int>(rate), 2});
        feed.setSound(sound);
        feed.playFrom({0.25}, 1);
        feed.setMuted(mutesAtFirst);
        std::vector<float> out(2 * 1000);
        feed.pull(std::span(out).first(2 * 400));
        feed.setMuted(false);
        feed.pull(std::span(out).subspan(2 * 400));
        return out;
    };
    std::vector<float> expected = pulled(false);
    std::fill_n(expected.begin(), 2 * 400, 0.0F);
    EXPECT_EQ(pulled(true), expected);
}

} // namespace
} // namespace flowtide::test
