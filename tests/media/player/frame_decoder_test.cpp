// What is decoded when: long groups, slow decoders, irregular frames, little memory. Seen through the player that it
// decodes for.
#include "tests/media/player/player_stage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

namespace flowtide::test {
namespace {

TEST(FrameDecoder, ShowsPicturesWhileALongGroupDecodes) {
    std::atomic<PlayerStage*> slow = nullptr;
    PlaybackScript script{.keyInterval = 250};
    script.onFrame = [&](const ImportedClip&, std::int64_t) {
        if (!slow) return;
        slow.load()->mailbox.waitUntilEmpty(); // an owner who is never busy
        slow.load()->clock.advance(0.01);
    };
    PlayerStage stage(script);
    stage.setItem(stageItem(10));
    ASSERT_TRUE(stage.seekAndWait(0));
    slow = &stage;
    std::vector<std::pair<double, std::int64_t>> shown;
    stage.player->onPicture = [&] { shown.emplace_back(stage.clock.seconds(), stage.number()); };
    const double start = stage.clock.seconds();
    ASSERT_TRUE(stage.seekAndWait(9));
    EXPECT_EQ(stage.number(), 225);
    EXPECT_EQ(shown.back().second, 225);
    ASSERT_GT(shown.size(), 10U);
    // Half the frames are left out: 113 and the last third of a second.
    EXPECT_LT(stage.clock.seconds() - start, 1.4);
    for (std::size_t i = 1; i < shown.size(); ++i) {
        EXPECT_GT(shown[i].second, shown[i - 1].second) << "forwards, towards the target";
        EXPECT_LT(shown[i].first - shown[i - 1].first, 0.05);
    }
}

TEST(FrameDecoder, SkipsAheadWhenItIsLate) {
    // Decoding takes twice as long as showing.
    for (const std::int64_t keyInterval : {1, 10}) {
        std::atomic<PlayerStage*> slow = nullptr;
        PlaybackScript script{.keyInterval = keyInterval};
        std::atomic<int> decoded = 0;
        script.onFrame = [&](const ImportedClip&, std::int64_t) {
            ++decoded;
            if (!slow) return;
            slow.load()->mailbox.waitUntilEmpty(); // an owner who is never busy
            slow.load()->clock.advance(2 * stageFrameSeconds);
        };
        PlayerStage stage(script);
        stage.setItem(stageItem(60));
        ASSERT_TRUE(stage.seekAndWait(0));
        ASSERT_TRUE(stage.playAndWait(1));
        slow = &stage;
        std::int64_t last = 0;
        stage.player->onPicture = [&] {
            EXPECT_GE(stage.number(), last) << "never back";
            last = stage.number();
        };
        while (stage.player->currentTime().value < 30) {
            stage.tick();
            // The frame due at this refresh or at one soon after: it never gives up, and never catches up by showing
            // what is past.
            const double time = stage.player->currentTime().value;
            ASSERT_TRUE(stage.mailbox.runUntil(
                [&] { return stage.player->picture()->isDue && stage.player->picture()->time.value >= time; }));
            // Trying leads of 0.02 s to 1 s, each twice the last, takes 2.3 s, and each try ends some frames late.
            ASSERT_LT(stage.player->picture()->time.value, time + 4) << "found its lead";
        }
        EXPECT_GT(last, 25 * 29);
        EXPECT_LT(decoded, 25 * 30) << "frames were left out";
    }
}

TEST(FrameDecoder, FrameTimesMayBeIrregular) {
    // Pauses of a second in the middle of a group: the frame before one is shown throughout.
    PlaybackScript script{.keyInterval = 40};
    script.frameTime = [](std::int64_t i) { return static_cast<double>(i) * stageFrameSeconds + (i > 17 ? 1.0 : 0.0); };
    for (const double rate : {0.0, 1.0, -1.0}) {
        PlayerStage stage(script);
        PlaybackItem item = stageItem(4);
        stage.setItem(item);
        for (const double time : {1.5, 3.0, 0.68, 1.68, 1.72, 1.0}) {
            ASSERT_TRUE(stage.seekAndWait(time));
            const std::int64_t expected =
                time < 1.72 ? std::min(frameAt(time, 100), std::int64_t{17}) : frameAt(time - 1, 100);
            EXPECT_EQ(stage.number(), expected) << time;
            EXPECT_TRUE(stage.player->picture()->isExact);
        }
        if (rate == 0) continue;
        ASSERT_TRUE(stage.playAndWait(rate));
        for (int i = 0; i < 50; ++i) {
            stage.tick();
            ASSERT_TRUE(stage.waitForDueFrame());
            const double time = stage.player->currentTime().value;
            const std::int64_t expected =
                time < 1.72 - 1e-9 ? std::min(frameAt(time, 100), std::int64_t{17}) : frameAt(time - 1, 100);
            ASSERT_EQ(stage.number(), expected) << time;
        }
    }
}

TEST(FrameDecoder, TheFirstFrameStandsInForWhatATrackLacksBeforeIt) {
    PlaybackScript script{.keyInterval = 10};
    script.frameTime = [](std::int64_t i) { return 0.3 + static_cast<double>(i) * stageFrameSeconds; };
    for (const double rate : {0.0, 1.0, -1.0}) {
        PlayerStage stage(script);
        stage.setItem(stageItem(4));
        ASSERT_TRUE(stage.seekAndWait(rate < 0 ? 0.6 : 0.0));
        EXPECT_EQ(stage.number(), rate < 0 ? 7 : 0);
        if (rate == 0) continue;
        ASSERT_TRUE(stage.playAndWait(rate));
        for (int i = 0; i < 30; ++i) {
            stage.tick();
            ASSERT_TRUE(stage.waitForDueFrame());
            const double time = stage.player->currentTime().value;
            ASSERT_EQ(stage.number(), time < 0.3 ? 0 : frameAt(time - 0.3, 100)) << time;
        }
    }
}

TEST(FrameDecoder, StaysInsideItsBudget) {
    const std::size_t frameBytes = byteCount(numberedFrame({}, 48, 32, 0));
    for (const std::size_t frames : {1U, 4U, 12U}) {
        PlayerStage stage({.keyInterval = 12}, {}, frames * frameBytes + 7);
        stage.setItem(stageItem(10));
        for (const double rate : {1.0, -1.0, 8.0}) {
            ASSERT_TRUE(stage.seekAndWait(rate > 0 ? 1 : 9));
            stage.player->play(rate);
            stage.tick(0.4); // the beginning may have no room
            for (int i = 0; i < 40; ++i) {
                stage.tick();
                ASSERT_TRUE(stage.waitForDueFrame()) << frames << " " << rate;
                ASSERT_EQ(stage.number(), frameAt(stage.player->currentTime().value, 250));
                ASSERT_LE(stage.player->cachedBytes(), frames * frameBytes + 7);
            }
            stage.player->pause();
        }
    }
}

TEST(FrameDecoder, GivesUpReadingWhatIsNoLongerWanted) {
    std::atomic<bool> isStuck = false;
    PlaybackScript script;
    script.neverComes = [&](const ImportedClip& clip, std::int64_t index) {
        if (clip.encodedWidth() != 48 || index < 50) return false;
        isStuck = true;
        return true;
    };
    PlayerStage stage(script);
    for (int i = 0; i < 2; ++i) {
        stage.setItem(stageItem(4));
        stage.player->seek({3});
        while (!isStuck.exchange(false))
            std::this_thread::yield();
        PlaybackItem other = stageItem(4);
        other.media.asset.media[0] = stageProxy(4);
        stage.setItem(other);
        ASSERT_TRUE(stage.seekAndWait(3));
        EXPECT_EQ(stage.number(), 75);
    }
    stage.setItem(stageItem(4));
    stage.player->seek({3});
    while (!isStuck.exchange(false))
        std::this_thread::yield();
    stage.player.reset();
}

} // namespace
} // namespace flowtide::test
