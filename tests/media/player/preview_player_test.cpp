// Playing, seeking and what is shown meanwhile, on scripted media and a virtual clock.
#include "tests/media/player/player_stage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <new>
#include <string>
#include <thread>

namespace flowtide::test {
namespace {

bool isProxy(const PlayerStage& stage) {
    return stage.player->picture()->frame.width == 32;
}

TEST(PreviewPlayer, ShowsTheFrameDueAtEveryRefresh) {
    for (const std::int64_t keyInterval : {1, 12})
        for (const double rate : {1.0, 2.0, 4.0, 8.0, 0.3, -1.0, -2.0, -8.0}) {
            PlayerStage stage({.keyInterval = keyInterval});
            stage.setItem(stageItem(10, 2)); // at half speed: 20 s
            ASSERT_TRUE(stage.seekAndWait(rate > 0 ? 1 : 19));
            ASSERT_TRUE(stage.playAndWait(rate));
            const double start = stage.player->currentTime().value;
            const double begin = stage.clock.seconds();
            for (int i = 0; i < 60; ++i) {
                stage.tick();
                ASSERT_TRUE(stage.waitForDueFrame()) << rate;
                const double position = start + rate * (stage.clock.seconds() - begin);
                ASSERT_NEAR(stage.player->currentTime().value, position, 1e-9);
                ASSERT_EQ(stage.number(), frameAt(position / 2, 250)) << "at " << position << " rate " << rate;
                EXPECT_TRUE(stage.player->picture()->isExact);
            }
        }
}

TEST(PreviewPlayer, SeeksToExactFramesAndTheLatestWins) {
    std::atomic<bool> blocks = false;
    std::mutex gate; // held by the test while the decoder is to wait
    PlaybackScript script{.keyInterval = 10};
    script.onFrame = [&](const ImportedClip&, std::int64_t) {
        if (blocks) const std::scoped_lock wait(gate);
    };
    PlayerStage stage(script);
    stage.setItem(stageItem(4));
    for (const auto& [time, number] : {std::pair{0.0, 0},
                                       {3.96, 99},
                                       {4.0, 99},
                                       {99.0, 99},
                                       {-1.0, 0},
                                       {2.0, 50},
                                       {1.9999, 49},
                                       {0.04, 1},
                                       {2.0 - 1e-10, 50}}) {
        EXPECT_TRUE(stage.seekAndWait(time));
        EXPECT_EQ(stage.number(), number) << time;
        EXPECT_NEAR(stage.player->currentTime().value, std::clamp(time, 0.0, 4.0), 1e-12);
    }

    std::string log;
    const auto completion = [&](const char* name) {
        return [&log, name](bool finished) { log += std::string(name) + (finished ? "+" : "-"); };
    };
    {
        const std::scoped_lock hold(gate);
        blocks = true;
        stage.player->seek({1.0}, completion("a"));
        stage.player->seek({3.0}, completion("b"));
        stage.player->seek({3.2}, completion("c"));
        EXPECT_EQ(log, "a-b-");
    }
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return log.size() == 6; }));
    EXPECT_EQ(log, "a-b-c+");
    EXPECT_EQ(stage.number(), 80);
    stage.player->seek({3.2}, completion("d"));
    EXPECT_EQ(log, "a-b-c+d+") << "at hand";
    {
        const std::scoped_lock hold(gate);
        stage.player->seek({1.4}, completion("e"));
        stage.setItem(stageItem(4));
        EXPECT_EQ(log, "a-b-c+d+e-") << "another item";
    }
}

TEST(PreviewPlayer, GoesOnFromWhereASeekLedWhateverTheIndexPromised) {
    std::atomic<int> decoded = 0;
    PlaybackScript script{.keyInterval = 25, .indexLead = 2 * stageFrameSeconds};
    script.onFrame = [&](const ImportedClip&, std::int64_t) { ++decoded; };
    PlayerStage stage(script, {}, 1U << 20U);
    stage.setItem(stageItem(4));
    EXPECT_TRUE(stage.seekAndWait(3.5));
    for (const int number : {48, 49, 50, 24, 74}) {
        EXPECT_TRUE(stage.seekAndWait((number + 0.5) * stageFrameSeconds)) << stage.player->failure();
        EXPECT_EQ(stage.number(), number);
    }
    EXPECT_TRUE(stage.seekAndWait(0.2));
    EXPECT_TRUE(stage.seekAndWait(1.9));
    decoded = 0;
    stage.player->play(1); // over the places where the index is wrong
    for (int i = 0; i < 20; ++i) {
        stage.tick(stageFrameSeconds / 4);
        EXPECT_TRUE(stage.waitForDueFrame());
    }
    EXPECT_LT(decoded, 60);
}

TEST(PreviewPlayer, ScrubsOnTheProxyAndRestsOnTheSource) {
    PlayerStage stage;
    PlaybackItem item = stageItem(10);
    item.proxy = stageProxy(10);
    stage.setItem(item);
    for (const double time : {5.0, 7.0, 2.0}) {
        ASSERT_TRUE(stage.seekAndWait(time));
        EXPECT_TRUE(isProxy(stage));
        EXPECT_FALSE(stage.player->picture()->isExact);
        EXPECT_EQ(stage.number(), frameAt(time, 250));
        stage.tick(0.1); // a seek every tenth of a second is no rest
    }
    EXPECT_TRUE(isProxy(stage));
    EXPECT_TRUE(stage.player->isActive());
    stage.tick(0.06);
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return stage.player->picture()->isExact; }));
    EXPECT_FALSE(isProxy(stage));
    EXPECT_EQ(stage.number(), 50);
    EXPECT_FALSE(stage.player->isActive()) << "nothing more to come";

    for (const auto& [rate, onProxy] : {std::pair{1.0, false}, {1.9, false}, {2.0, true}, {-1.0, true}, {8.0, true}}) {
        PlayerStage playing;
        playing.setItem(item);
        ASSERT_TRUE(playing.seekAndWait(5));
        ASSERT_TRUE(playing.playAndWait(rate));
        playing.tick(0.5);
        ASSERT_TRUE(playing.waitForDueFrame());
        EXPECT_EQ(isProxy(playing), onProxy) << rate;
        EXPECT_EQ(playing.number(), frameAt(5 + 0.5 * rate, 250)) << rate;
    }
}

TEST(PreviewPlayer, PlaysToTheEndsAndStops) {
    for (const double rate : {1.0, -4.0}) {
        PlayerStage stage;
        stage.setItem(stageItem(2));
        int ends = 0;
        stage.player->onEnd = [&] { ++ends; };
        ASSERT_TRUE(stage.seekAndWait(1));
        ASSERT_TRUE(stage.playAndWait(rate));
        stage.tick(0.9 / std::abs(rate));
        EXPECT_EQ(ends, 0);
        stage.tick(0.2 / std::abs(rate));
        EXPECT_EQ(ends, 1);
        EXPECT_EQ(stage.player->rate(), 0);
        EXPECT_EQ(stage.player->requestedRate(), 0);
        EXPECT_EQ(stage.player->currentTime().value, rate > 0 ? 2 : 0);
        ASSERT_TRUE(stage.mailbox.runUntil([&] { return stage.player->picture()->isExact; }));
        EXPECT_EQ(stage.number(), rate > 0 ? 49 : 0);
        stage.tick(5);
        EXPECT_EQ(ends, 1);
    }
}

TEST(PreviewPlayer, WaitsForItsFirstFramesBeforeItMoves) {
    std::mutex gate;
    std::atomic<bool> blocks = false;
    PlaybackScript script;
    script.onFrame = [&](const ImportedClip& clip, std::int64_t) {
        if (blocks && clip.encodedWidth() == 32) const std::scoped_lock wait(gate);
    };
    PlayerStage stage(script);
    PlaybackItem item = stageItem(10);
    item.proxy = stageProxy(10);
    stage.setItem(item);
    ASSERT_TRUE(stage.seekAndWait(9));
    stage.tick(0.2);
    {
        const std::scoped_lock hold(gate);
        blocks = true;
        stage.player->play(-8);
        EXPECT_EQ(stage.player->requestedRate(), -8);
        for (int i = 0; i < 5; ++i)
            stage.tick(0.05);
        EXPECT_EQ(stage.player->rate(), 0);
        EXPECT_EQ(stage.player->currentTime().value, 9);
        stage.tick(0.1);
        EXPECT_EQ(stage.player->rate(), -8) << "but not for ever";
    }
}

TEST(PreviewPlayer, EditsKeepPlaceAndDecodedFrames) {
    std::atomic<int> decoded = 0;
    PlaybackScript script;
    script.onFrame = [&](const ImportedClip&, std::int64_t) { ++decoded; };
    PlayerStage stage(script);
    stage.setItem(stageItem(10));
    ASSERT_TRUE(stage.seekAndWait(4));
    ASSERT_TRUE(stage.playAndWait(1));
    stage.tick(0.1);
    const int before = decoded;
    EXPECT_EQ(stage.player->status(), PlayerStatus::ready);
    stage.setItem(stageItem(10, 0.5)); // twice as fast: the same output time is another frame
    EXPECT_EQ(stage.player->status(), PlayerStatus::ready) << "an edit is no new clip";
    EXPECT_NEAR(stage.player->currentTime().value, 4.1, 1e-9);
    EXPECT_EQ(stage.player->rate(), 1);
    ASSERT_TRUE(stage.waitForDueFrame());
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return stage.number() == frameAt(8.2, 250); }));
    stage.player->pause();
    EXPECT_GE(before, 2);
    stage.setItem(stageItem(10));
    const int after = decoded;
    ASSERT_TRUE(stage.seekAndWait(4.04));
    EXPECT_EQ(stage.number(), 101);
    EXPECT_LE(decoded - after, 12) << "at most what is decoded ahead, not the frame itself";

    stage.setItem(stageItem(2)); // shorter
    EXPECT_EQ(stage.player->currentTime().value, 2);
    stage.player->setItem(nullptr);
    EXPECT_FALSE(stage.player->picture());
    EXPECT_EQ(stage.player->status(), PlayerStatus::unknown);
    while (stage.player->cachedBytes() != 0)
        std::this_thread::yield(); // the decoder ends the frame in hand first
    EXPECT_FALSE(stage.player->isActive());
    stage.player->play(1);
    EXPECT_EQ(stage.player->requestedRate(), 0);
    stage.player->seek({1});
    stage.tick();
}

TEST(PreviewPlayer, AFileOpenedAgainIsReadAgain) {
    std::mutex gate;
    std::atomic<bool> blocks = false, isStuck = false;
    PlaybackScript script;
    script.onFrame = [&](const ImportedClip&, std::int64_t) {
        if (!blocks) return;
        isStuck = true;
        const std::scoped_lock wait(gate);
    };
    PlayerStage stage(script);
    stage.setItem(stageItem(4));
    ASSERT_TRUE(stage.seekAndWait(1));
    PlaybackItem changed = stageItem(4);
    changed.media.asset.media[0].clip = stageClip(4, 64);
    {
        const std::scoped_lock hold(gate);
        blocks = true;
        stage.player->seek({3});
        while (!isStuck)
            std::this_thread::yield();
        stage.player->setItem(nullptr); // the decoder does not get to see that there was nothing
        stage.setItem(changed);
        blocks = false;
    }
    for (const double time : {1, 3}) {
        ASSERT_TRUE(stage.seekAndWait(time));
        EXPECT_EQ(stage.player->picture()->frame.width, 64) << time;
    }
}

TEST(PreviewPlayer, RenderedPreviewsAreShownWhereTheyLie) {
    PlayerStage stage;
    PlaybackItem item = stageItem(4);
    item.media.asset.media.push_back({"preview.mov", 0, stageClip(1, 64)});
    item.media.asset.cachedPreviews.push_back({1, {}, {60'000}, {60'000}, {120'000}});
    stage.setItem(item);
    ASSERT_TRUE(stage.seekAndWait(0.5));
    for (const double rate : {1.0, -1.0}) {
        ASSERT_TRUE(stage.seekAndWait(rate > 0 ? 0.5 : 2.5));
        ASSERT_TRUE(stage.playAndWait(rate));
        for (int i = 0; i < 110; ++i) {
            stage.tick();
            ASSERT_TRUE(stage.waitForDueFrame());
            const double time = stage.player->currentTime().value;
            const bool inPreview = time >= 1 && time < 2;
            ASSERT_EQ(stage.player->picture()->frame.width, inPreview ? 64 : 48) << time;
            ASSERT_EQ(stage.player->picture()->isRendered, inPreview) << time;
            ASSERT_EQ(stage.number(), inPreview ? frameAt(time - 1, 25) : frameAt(time, 100)) << time;
        }
        stage.player->pause();
    }
}

TEST(PreviewPlayer, MediaThatFailAreReplacedOrReported) {
    std::string failing;
    std::atomic<int> failsAt = 0;
    PlaybackScript script;
    script.onFrame = [&](const ImportedClip& clip, std::int64_t index) {
        const std::string name = clip.encodedWidth() == 32 ? "proxy" : clip.encodedWidth() == 64 ? "preview" : "clip";
        if (name == failing && index >= failsAt) throw FlowtideError::readerFailed("Video decode failed mid-file");
    };
    PlaybackItem item = stageItem(4);
    item.proxy = stageProxy(4);
    item.media.asset.media.push_back({"preview.mov", 0, stageClip(1, 64)});
    item.media.asset.cachedPreviews.push_back({1, {}, {60'000}, {60'000}, {120'000}});
    for (const char* name : {"proxy", "preview"}) {
        failing = name;
        PlayerStage stage(script);
        stage.setItem(item);
        ASSERT_TRUE(stage.seekAndWait(1.5));
        stage.tick(0.2);
        ASSERT_TRUE(stage.mailbox.runUntil([&] { return stage.player->picture()->isExact; }));
        EXPECT_EQ(stage.number(), failing == "proxy" ? 12 : 37) << name;
        EXPECT_EQ(stage.player->status(), PlayerStatus::ready);
        ASSERT_TRUE(stage.seekAndWait(3.2));
        EXPECT_EQ(isProxy(stage), failing != "proxy");
        EXPECT_EQ(stage.number(), 80);
    }
    failing = "clip";
    {
        PlayerStage stage(script);
        int changes = 0;
        stage.player->onStatus = [&] { ++changes; };
        stage.setItem(stageItem(4));
        EXPECT_FALSE(stage.seekAndWait(1.5));
        EXPECT_EQ(stage.player->status(), PlayerStatus::failed);
        EXPECT_EQ(stage.player->failure(), "Asset reader failed: Video decode failed mid-file");
        EXPECT_EQ(changes, 1);
        failing.clear();
        stage.setItem(stageItem(4));
        EXPECT_TRUE(stage.seekAndWait(1.5)) << "tried again";
        EXPECT_EQ(stage.player->status(), PlayerStatus::ready);
        EXPECT_EQ(stage.player->failure(), "");
    }
    {
        PlayerStage stage({.onFrame = [](const ImportedClip&, std::int64_t) { throw std::bad_alloc(); }});
        stage.setItem(stageItem(4));
        EXPECT_FALSE(stage.seekAndWait(1.5));
        EXPECT_EQ(stage.player->failure(), "There is not enough memory.");
    }
    failing = "clip"; // what comes before the damage plays, its last frame to the end
    failsAt = 50;
    PlayerStage stage(script);
    stage.setItem(stageItem(4));
    ASSERT_TRUE(stage.seekAndWait(1.8));
    ASSERT_TRUE(stage.playAndWait(1));
    for (int i = 0; i < 60; ++i) {
        stage.tick();
        ASSERT_TRUE(stage.waitForDueFrame());
        ASSERT_EQ(stage.number(), std::min(frameAt(stage.player->currentTime().value, 100), std::int64_t{49}));
    }
    EXPECT_EQ(stage.player->status(), PlayerStatus::ready);
}

TEST(PreviewPlayer, APartThatIsMissingIsNoneOfTheRest) {
    std::mutex gate;
    std::atomic<bool> blocks = false, isStuck = false;
    PlaybackScript script;
    script.onFrame = [&](const ImportedClip&, std::int64_t index) {
        if (index < 50) return;
        isStuck = true;
        if (blocks) const std::scoped_lock wait(gate);
        throw FlowtideError::readerFailed("Video decode failed mid-file");
    };
    PlayerStage stage(script);
    stage.setItem(stageItem(4));
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(stage.seekAndWait(3));
        EXPECT_EQ(stage.player->status(), PlayerStatus::failed);
        EXPECT_TRUE(stage.seekAndWait(i));
        EXPECT_EQ(stage.number(), 25 * i);
        EXPECT_EQ(stage.player->status(), PlayerStatus::ready);
    }
    std::optional<bool> reached;
    {
        const std::scoped_lock hold(gate);
        blocks = true;
        isStuck = false;
        stage.player->seek({3});
        while (!isStuck)
            std::this_thread::yield();
        stage.player->seek({1.5}, [&](bool finished) { reached = finished; });
    }
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return reached.has_value(); }));
    EXPECT_TRUE(*reached) << "though the way to the place before it failed meanwhile";
}

TEST(PreviewPlayer, PicturesAreConvertedForTheDisplay) {
    PlayerStage stage;
    PlaybackItem item = stageItem(10);
    auto clip = std::make_shared<ImportedClip>(*item.media.asset.media[0].clip);
    clip->video.colorProperties = ColorProperties{"bt2020", "smpte2084", "bt2020nc"};
    clip->preferredTransform = {0, 1, -1, 0, 32, 0};
    clip->width = 32;
    clip->height = 48;
    item.media.asset.media[0].clip = clip;
    item.proxy = stageProxy(10); // untagged: shown in its clip's colours
    stage.setItem(item);
    ASSERT_TRUE(stage.seekAndWait(2));
    EXPECT_FALSE(stage.player->displayed());
    int calls = 0;
    stage.player->onDisplay = [&] { ++calls; };
    for (const auto& [box, size] : {std::pair{OutputSize{64, 24}, OutputSize{16, 24}}, {{64, 96}, {64, 96}}}) {
        stage.player->setDisplaySize(box);
        const int before = calls;
        ASSERT_TRUE(stage.mailbox.runUntil([&] { return calls > before; }));
        const DisplayedPicture& shown = *stage.player->displayed();
        EXPECT_EQ((OutputSize{shown.pixels.width, shown.pixels.height}), size) << shown.failure;
        EXPECT_TRUE(shown.picture.hasSameFrame(*stage.player->picture()));
        EXPECT_EQ(shown.picture.color, pictureColor(*clip));
        EXPECT_FALSE(shown.picture.isExact);
        EXPECT_TRUE(shown.picture.orientation.isIdentity()) << "the proxy's own";
        EXPECT_EQ(numberOf(shown.picture.frame), 50);
    }
    stage.tick(0.2);
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return stage.player->displayed()->picture.isExact; }));
    EXPECT_EQ(stage.player->displayed()->picture.orientation, clip->preferredTransform);
    stage.setItem(stageItem(4)); // the same file: an edit
    EXPECT_TRUE(stage.player->displayed());
    stage.player->setItem(nullptr);
    EXPECT_FALSE(stage.player->displayed());
}

TEST(PreviewPlayer, CallbacksMayUseThePlayerAndEndIt) {
    PlayerStage stage;
    stage.setItem(stageItem(4));
    ASSERT_TRUE(stage.seekAndWait(0));
    std::string log;
    stage.player->onPicture = [&] {
        if (stage.number() == 25)
            stage.player->seek({2}, [&](bool finished) { log += finished ? "inner+" : "inner-"; });
    };
    stage.player->seek({1}, [&](bool finished) { log += finished ? "outer+" : "outer-"; });
    ASSERT_TRUE(stage.mailbox.runUntil([&] { return log.size() > 6; }));
    EXPECT_EQ(log, "outer-inner+");
    EXPECT_EQ(stage.number(), 50);

    for (const bool onStatus : {false, true}) {
        PlayerStage other;
        const auto end = [&] { other.player.reset(); };
        if (onStatus)
            other.player->onStatus = end;
        else
            other.player->onPicture = end;
        other.setItem(stageItem(4));
        EXPECT_TRUE(other.mailbox.runUntil([&] { return !other.player; }));
    }
}

} // namespace
} // namespace flowtide::test
