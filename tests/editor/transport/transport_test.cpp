// Starts, ends, loops, steps and scrubs, on a player that does what a test says.
#include "tests/support/session_stage.h"

#include <gmock/gmock.h>

#include <utility>

namespace flowtide::test {
namespace {

using testing::ElementsAre;

class TransportTest : public SessionStage {
protected:
    const Transport& transport() const { return model->transport(); }
    double playerTime() { return player.currentTime().value; }
    void moveTo(double sourceSeconds) { model->scrub(sourceSeconds / model->clip()->duration); }
    /// Plays on for some time, with a display that refreshes.
    void run(double seconds) {
        for (double passed = 0; passed < seconds; passed += 1.0 / 64) {
            scheduler.advance(1.0 / 64);
            player.update();
        }
        scheduler.settle();
    }
    /// A slow stretch of some 10 output seconds from second 3 on, selected.
    SourceRange selectRange() {
        model->replaceKeyframes(slowBetween(3, 4));
        rebuilds();
        const OpticalFlowRange& range = model->flow().opticalFlowRanges().at(0);
        model->selectOpticalFlowRange(range.id);
        return {range.start, range.end};
    }
    double outputTime(double source) const { return player.item()->media.timeMap.outputTime({source}).value; }
    void expectStopped() const {
        EXPECT_FALSE(transport().isPlaying());
        EXPECT_FALSE(transport().isStartingPlayback());
        EXPECT_FALSE(transport().loopSeekPending());
        EXPECT_EQ(transport().shuttleRate(), 0);
        EXPECT_EQ(player.requestedRate(), 0);
    }
};

TEST_F(TransportTest, ShuttlesInPowersOfTwo) {
    model->shuttleForward(); // without a clip
    expectStopped();
    open();
    moveTo(5);
    const auto rates = [&](auto press, int presses) {
        std::vector<float> result;
        for (; presses > 0; --presses) {
            (model.get()->*press)();
            EXPECT_EQ(player.requestedRate(), transport().shuttleRate());
            result.push_back(transport().shuttleRate());
        }
        return result;
    };
    EXPECT_THAT(rates(&FlowtideViewModel::shuttleForward, 5), ElementsAre(1, 2, 4, 8, 8));
    EXPECT_THAT(rates(&FlowtideViewModel::shuttleBackward, 5), ElementsAre(-1, -2, -4, -8, -8));
    EXPECT_THAT(rates(&FlowtideViewModel::shuttleForward, 1), ElementsAre(1));
    model->togglePlayback();
    expectStopped();
    model->togglePlayback();
    EXPECT_TRUE(transport().isPlaying());
}

TEST_F(TransportTest, APlayFromAnEndBeginsAtTheOther) {
    open();
    model->applyTrimRange(1, 9);
    rebuilds();
    const struct {
        double playhead, begins; ///< source seconds
        float rate;
    } starts[] = {
        {9, 1, 1},  {8.991, 1, 1},  {8.989, 8.989, 1}, {1, 1, 1},     {5, 5, 2},
        {1, 9, -1}, {1.009, 9, -1}, {1.011, 1, -1},    {5, 4.95, -1}, {9, 8.95, -4},
    };
    for (const auto& [playhead, begins, rate] : starts) {
        moveTo(playhead);
        model->startPlayback(rate);
        EXPECT_NEAR(playerTime(), begins - 1, 1e-9) << playhead << " " << rate;
        EXPECT_NEAR(model->playheadSeconds(), begins, 1e-9);
        EXPECT_EQ(player.requestedRate(), rate);
        model->pausePlayback();
    }
    const SourceRange range = selectRange();
    model->setLoopPreview(true);
    for (const auto& [playhead, rate, begins] :
         {std::tuple{range.upper, 1.F, range.lower}, std::tuple{range.lower, -1.F, range.upper}}) {
        moveTo(playhead);
        model->startPlayback(rate);
        EXPECT_NEAR(playerTime(), outputTime(begins), 1e-6) << rate;
        model->pausePlayback();
    }
}

TEST_F(TransportTest, PlayStopsAtItsEndWhoeverNoticesIt) {
    open();
    model->applyTrimRange(1, 9);
    rebuilds();
    for (const bool isPlayerFirst : {false, true}) {
        for (const auto& [from, rate, end] : {std::tuple{8.5, 1.F, 9.0}, std::tuple{1.5, -8.F, 1.0}}) {
            moveTo(from);
            model->startPlayback(rate);
            if (isPlayerFirst)
                run(0.6);
            else
                scheduler.advance(0.6);
            expectStopped();
            EXPECT_EQ(model->playheadSeconds(), end);
            EXPECT_NEAR(playerTime(), end - 1, 1e-6);
            scheduler.settle();
            rest();
            EXPECT_EQ(storedProject().edits.playhead, end / 10);
        }
    }
    // On the way the playhead follows.
    moveTo(2);
    model->startPlayback(2);
    scheduler.advance(1.0001);
    EXPECT_NEAR(model->playheadSeconds(), 4, 2.0 / 30);
    scheduler.advance(0.02);
    model->pausePlayback();
    EXPECT_NEAR(model->playheadSeconds(), 1 + playerTime(), 1e-9);

    // Backward it stops at the start of the selected range, and once there goes on.
    const SourceRange range = selectRange();
    moveTo(range.upper);
    model->startPlayback(-8);
    run(5);
    expectStopped();
    EXPECT_DOUBLE_EQ(model->playheadSeconds(), range.lower);
    model->startPlayback(-8);
    run(5);
    EXPECT_EQ(model->playheadSeconds(), 1);
}

TEST_F(TransportTest, ALoopJumpsOnceUntilItIsThere) {
    open();
    const SourceRange range = selectRange();
    model->setLoopPreview(true);
    const double start = outputTime(range.lower);
    const double end = outputTime(range.upper);
    ASSERT_GT(end - start, 2);
    player.completesSeeks = false;
    for (const bool isForward : {true, false}) {
        moveTo(isForward ? range.upper - 0.02 : range.lower + 0.02);
        model->startPlayback(isForward ? 1 : -1);
        player.seeks.clear();
        player.completeSeek(true);
        scheduler.advance(0.5);
        EXPECT_THAT(player.seeks, ElementsAre(isForward ? start : end));
        EXPECT_TRUE(transport().loopSeekPending());
        scheduler.advance(1);
        player.completeSeek(true);
        EXPECT_FALSE(transport().loopSeekPending());
        EXPECT_TRUE(transport().isPlaying());
        EXPECT_EQ(player.seeks.size(), 1U);

        model->scrub(0.9, true); // out of it
        EXPECT_EQ(player.requestedRate(), isForward ? 1 : -1);
        scheduler.advance(0.04);
        ASSERT_EQ(player.seeks.size(), 3U);
        EXPECT_EQ(player.seeks.back(), isForward ? start : end);
        model->pausePlayback();
        expectStopped();
    }
    // The end of a former play's jump says nothing of a later one's.
    moveTo(range.upper - 0.02);
    for (const double seconds : {0.3, end - start + 0.1}) {
        model->startPlayback(1);
        player.seeks.clear();
        scheduler.advance(seconds);
        EXPECT_EQ(player.seeks.size(), 1U);
        EXPECT_TRUE(transport().loopSeekPending());
        model->pausePlayback();
    }
    // The range reaches to the end of the output, where the player stops by itself.
    player.completesSeeks = true;
    model->applyTrimRange(2, (range.lower + range.upper) / 2);
    rebuilds();
    ASSERT_TRUE(model->timeline().loopPreview());
    moveTo(range.upper - 0.7);
    model->startPlayback(1);
    player.seeks.clear();
    run(2 * player.duration());
    EXPECT_TRUE(transport().isPlaying());
    EXPECT_EQ(player.requestedRate(), 1);
    EXPECT_GE(player.seeks.size(), 1U);
}

TEST_F(TransportTest, AStartWaitsForThePlayer) {
    player.statusOfItems = PlayerStatus::unknown;
    open();
    model->startPlayback(2);
    EXPECT_TRUE(transport().isStartingPlayback());
    EXPECT_FALSE(transport().isPlaying());
    player.completesSeeks = false;
    player.setStatus(PlayerStatus::ready);
    EXPECT_TRUE(transport().isStartingPlayback());
    player.completeSeek(true);
    EXPECT_FALSE(transport().isStartingPlayback());
    EXPECT_EQ(transport().shuttleRate(), 2);

    // Changed curves are shown first. Whatever ends the wait, the player's answer comes too late.
    for (const auto& end : std::initializer_list<std::function<void()>>{
             [&] { model->pausePlayback(); }, [&] { model->togglePlayback(); }, [&] { moveTo(5); },
             [&] { model->beginCurveEdit(); }, [&] { model->nudgePlayhead(1); }}) {
        model->replaceKeyframes({point(0, 1), point(5, model->curve().keyframes()[0].speed + 1), point(10, 1)});
        expectStopped();
        player.setStatus(PlayerStatus::unknown);
        const std::size_t items = player.items.size();
        model->startPlayback(1);
        EXPECT_EQ(player.items.size(), items + 1);
        EXPECT_TRUE(transport().isStartingPlayback());
        end();
        player.setStatus(PlayerStatus::ready);
        player.completeSeek(true);
        expectStopped();
        model->endCurveEdit();
    }
    // A scrub may also move a start along.
    player.setStatus(PlayerStatus::unknown);
    model->startPlayback(1);
    model->scrub(0.8, true);
    player.completesSeeks = true;
    player.setStatus(PlayerStatus::ready);
    EXPECT_TRUE(transport().isPlaying());
    EXPECT_NEAR(model->playheadSeconds(), 8, 1e-3);
    EXPECT_NEAR(playerTime(), outputTime(8), 1e-3);
}

TEST_F(TransportTest, APlayerThatCannotBePreparedLeavesTheSessionStopped) {
    player.statusOfItems = PlayerStatus::unknown;
    player.completesSeeks = false;
    open();
    const struct {
        std::function<void()> happens;
        const char* sentence;
    } failures[] = {
        {[&] { player.setStatus(PlayerStatus::failed); }, "Preview player failed while loading."},
        {[&] { player.setStatus(PlayerStatus::failed, "The disk is gone."); }, "The disk is gone."},
        {[&] { player.setStatus(PlayerStatus::unknown); }, "Preview player reported an unknown status."},
        {[&] { scheduler.advance(30); }, "Preview player did not become ready in time."},
        {[&] {
             player.setStatus(PlayerStatus::ready);
             player.setStatus(PlayerStatus::unknown);
         },
         "Preview player stopped being ready while seeking."},
        {[&] {
             player.setStatus(PlayerStatus::ready);
             player.completeSeek(false);
         },
         "Preview player could not prepare the requested frame."},
        {[&] {
             player.setStatus(PlayerStatus::ready);
             scheduler.advance(30);
         },
         "Preview player could not prepare the requested frame."},
    };
    for (const auto& [happens, sentence] : failures) {
        player.setStatus(PlayerStatus::unknown);
        model->startPlayback(1); // again
        EXPECT_TRUE(transport().isStartingPlayback());
        happens();
        expectStopped();
        EXPECT_EQ(model->renders().render().previewRenderError(), sentence);
    }
    player.completesSeeks = true;
    player.setStatus(PlayerStatus::failed, "Gone.");
    const std::size_t items = player.items.size();
    model->startPlayback(1); // loads anew
    EXPECT_EQ(player.items.size(), items + 1);
    player.setStatus(PlayerStatus::ready);
    EXPECT_TRUE(transport().isPlaying());
    EXPECT_FALSE(model->renders().render().previewRenderError());
    player.setStatus(PlayerStatus::failed, "Gone again.");
    expectStopped();
    EXPECT_EQ(model->renders().render().previewRenderError(), "Gone again.");
}

TEST_F(TransportTest, AStepIsOneOutputFrame) {
    open();
    constexpr double frame = 1.0 / 30;
    const auto places = [&](std::initializer_list<int> steps) {
        std::vector<double> result;
        for (const int frames : steps) {
            model->nudgePlayhead(frames);
            result.push_back(model->playheadSeconds());
        }
        return result;
    };
    EXPECT_THAT(places({-1, 1, 1, 3, -2}),
                ElementsAre(0, testing::DoubleNear(frame, 1e-9), testing::DoubleNear(2 * frame, 1e-9),
                            testing::DoubleNear(5 * frame, 1e-9), testing::DoubleNear(3 * frame, 1e-9)));
    EXPECT_NEAR(places({10'000})[0], 10 - frame, 1e-9); // the last frame
    model->startPlayback(-1);
    scheduler.advance(0.1);
    model->nudgePlayhead(1);
    expectStopped();

    // The curve has just changed: it is shown first. A step in its slow part is a tenth of a source frame.
    model->replaceKeyframes(slowBetween(3, 7));
    moveTo(5);
    const std::size_t items = player.items.size();
    EXPECT_NEAR(places({1})[0], 5 + frame / 10, 1e-5);
    EXPECT_EQ(player.items.size(), items + 1);
    EXPECT_NEAR(playerTime(), outputTime(model->playheadSeconds()), 1e-9);
    EXPECT_EQ(rebuilds(), 0U); // and not again
}

TEST_F(TransportTest, AScrubPausesOrPlaysOn) {
    open();
    model->applyTrimRange(2, 8);
    rebuilds();
    for (const auto& [position, seconds] :
         {std::pair{0.5, 5.0}, std::pair{-1.0, 2.0}, std::pair{0.1, 2.0}, std::pair{7.0, 8.0}}) {
        model->scrub(position);
        EXPECT_DOUBLE_EQ(model->playheadSeconds(), seconds);
        EXPECT_DOUBLE_EQ(playerTime(), seconds - 2);
    }
    model->scrub(std::nan(""));
    EXPECT_EQ(model->playheadSeconds(), 8);

    moveTo(3);
    model->startPlayback(4);
    scheduler.advance(0.1);
    model->scrub(0.6, true);
    EXPECT_EQ(player.requestedRate(), 4);
    scheduler.advance(0.1);
    EXPECT_NEAR(model->playheadSeconds(), 6.4, 0.15);
    model->scrub(0.4);
    expectStopped();
    EXPECT_EQ(model->playheadSeconds(), 4);
    rest();
    EXPECT_EQ(storedProject().edits.playhead, 0.4);
    model->scrub(0.7, true); // nothing plays
    expectStopped();
    EXPECT_EQ(model->playheadSeconds(), 7);
}

TEST_F(TransportTest, ARateThatIsNotTheWantedOneIsLoggedOnceASecond) {
    open();
    model->startPlayback(2);
    scheduler.advance(1);
    EXPECT_TRUE(logged.empty());
    player.isStalled = true;
    scheduler.advance(0.9);
    ASSERT_EQ(logged.size(), 1U);
    EXPECT_NE(logged[0].find("0 instead of 2"), std::string::npos) << logged[0];
    scheduler.advance(2);
    EXPECT_EQ(logged.size(), 3U);
}

} // namespace
} // namespace flowtide::test
