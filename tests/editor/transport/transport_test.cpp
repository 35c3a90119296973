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
    const std::optional<std::string>& error() const { return model->renders().render().previewRenderError(); }
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
    std::vector<float> rates;
    for (const char key : std::string("LLLLLJJJJJL")) {
        key == 'L' ? model->shuttleForward() : model->shuttleBackward();
        EXPECT_EQ(player.requestedRate(), transport().shuttleRate());
        rates.push_back(transport().shuttleRate());
    }
    EXPECT_THAT(rates, ElementsAre(1, 2, 4, 8, 8, -1, -2, -4, -8, -8, 1));
    player.seeks.clear();
    player.secondsPerQuestion = 1e-4; // as a clock that runs
    for (int i = 0; i < 3; ++i)
        model->shuttleForward();
    EXPECT_TRUE(player.seeks.empty()) << "a faster play goes on where it is";
    player.secondsPerQuestion = 0;
    model->togglePlayback();
    expectStopped();
    model->shuttleBackward();
    EXPECT_EQ(transport().shuttleRate(), -1);
    model->togglePlayback();
    expectStopped();
    model->togglePlayback();
    EXPECT_TRUE(transport().isPlaying());
}

TEST_F(TransportTest, StaysMutedForOtherClips) {
    model->setMuted(true);
    open();
    open("other.mov");
    EXPECT_TRUE(player.isMuted);
    EXPECT_TRUE(model->transport().isMuted());
    model->setMuted(false);
    EXPECT_FALSE(player.isMuted);
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
    moveTo(range.upper);
    model->startPlayback(1);
    EXPECT_NEAR(playerTime(), outputTime(range.lower), 1e-6);
    model->startPlayback(-1);
    EXPECT_NEAR(playerTime(), outputTime(range.upper), 1e-6);
    moveTo(range.lower + 0.02);
    model->startPlayback(-1);
    EXPECT_NEAR(playerTime(), outputTime(range.lower), 1e-6);
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
        }
    }
    player.isStalled = true;
    for (const auto& [rate, time, stops] : {std::tuple{1.F, 7.989, false}, std::tuple{1.F, 7.991, true},
                                            std::tuple{-1.F, 0.011, false}, std::tuple{-1.F, 0.009, true}}) {
        moveTo(5);
        model->startPlayback(rate);
        player.moveTo(time);
        scheduler.advance(0.1);
        EXPECT_EQ(transport().isPlaying(), !stops) << rate << " " << time;
    }
    player.isStalled = false;
    rest();
    EXPECT_EQ(storedProject().edits.playhead, 0.1);
    // On the way the playhead follows, thirty times a second.
    moveTo(2);
    player.seeks.clear();
    model->startPlayback(2);
    EXPECT_TRUE(player.seeks.empty()); // it is there
    scheduler.advance(1.0 / 30 - 1e-4);
    EXPECT_EQ(model->playheadSeconds(), 2);
    scheduler.advance(2e-4);
    EXPECT_NEAR(model->playheadSeconds(), 2 + 2.0 / 30, 1e-9);
    scheduler.advance(1);
    EXPECT_NEAR(model->playheadSeconds(), 4 + 2.0 / 30, 1e-9);
    scheduler.advance(0.02);
    model->pausePlayback();
    EXPECT_NEAR(model->playheadSeconds(), 1 + playerTime(), 1e-9);
    rest();
    EXPECT_EQ(storedProject().edits.playhead, model->timeline().scrubPosition());

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
    moveTo(range.lower + 0.03); // less than the head start behind it
    model->startPlayback(-8);
    run(5);
    EXPECT_DOUBLE_EQ(model->playheadSeconds(), range.lower);
}

TEST_F(TransportTest, ALoopJumpsOnceUntilItIsThere) {
    open();
    const SourceRange range = selectRange();
    model->setLoopPreview(true);
    const double start = outputTime(range.lower);
    const double end = outputTime(range.upper);
    player.completesSeeks = false;
    player.isStalled = true;
    for (const float rate : {1.F, -1.F}) {
        moveTo(3.5);
        model->startPlayback(rate);
        const bool isForward = rate > 0;
        const std::pair<double, bool> places[] = {
            {start - 0.006, true}, {start - 0.004, !isForward}, {start + 0.004, !isForward}, {start + 0.006, false},
            {end - 0.006, false},  {end - 0.004, isForward},    {end + 0.004, isForward},    {end + 0.006, true},
        };
        for (const auto& [place, jumps] : places) {
            player.moveTo(place);
            player.arrivesLate = true;
            player.seeks.clear();
            scheduler.advance(0.5);
            EXPECT_EQ(transport().loopSeekPending(), jumps) << place - start << " " << place - end;
            EXPECT_EQ(player.seeks, jumps ? std::vector{isForward ? start : end} : std::vector<double>());
            player.arrivesLate = false;
            player.completeSeek(true);
            EXPECT_FALSE(transport().loopSeekPending());
        }
        model->pausePlayback();
    }
    // The end of a former play's jump says nothing of a later one's.
    player.isStalled = false;
    moveTo(range.upper - 0.02);
    for (const double seconds : {0.3, end - start + 0.1}) {
        model->startPlayback(1);
        scheduler.advance(seconds);
        EXPECT_TRUE(transport().loopSeekPending());
        model->pausePlayback();
        expectStopped();
    }
    // The range reaches to the end of the output, where the player stops by itself.
    player.completesSeeks = true;
    model->applyTrimRange(2, 3.5);
    rebuilds();
    moveTo(3.3);
    model->startPlayback(1);
    player.seeks.clear();
    run(2 * player.duration());
    EXPECT_EQ(player.requestedRate(), 1);
    EXPECT_TRUE(transport().isPlaying() && !player.seeks.empty());
    EXPECT_THAT(player.seeks, testing::Each(testing::DoubleNear(outputTime(range.lower), 1e-6)));
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
    const std::function<void()> ends[] = {[&] { model->togglePlayback(); }, [&] { moveTo(5); },
                                          [&] { model->beginCurveEdit(); }, [&] { model->nudgePlayhead(1); }};
    for (int i = 0; i < 8; ++i) {
        model->setCurveSmoothing(0.1 * i);
        expectStopped();
        player.setStatus(PlayerStatus::unknown);
        const std::size_t items = player.items.size();
        model->startPlayback(1);
        EXPECT_EQ(player.items.size(), items + 1);
        if (i % 2) player.setStatus(PlayerStatus::ready); // it is seeking
        ends[i / 2]();
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

TEST_F(TransportTest, AStartOutlivesTheItemsThatArriveMeanwhile) {
    open();
    player.completesSeeks = false;
    const std::function<void()> arrivals[] = {
        [&] { model->makeProxy(); },
        [&] {
            model->renderSelectedPreview(SourceRange{3, 3.2});
        },
    };
    for (const auto& arrive : arrivals) {
        model->replaceKeyframes(slowBetween(2, 3 + 0.1 * static_cast<double>(player.items.size())));
        arrive();
        model->startPlayback(1); // the edit is shown first
        EXPECT_TRUE(transport().isStartingPlayback());
        const std::size_t items = player.items.size();
        scheduler.settle();
        EXPECT_GT(player.items.size(), items);
        EXPECT_TRUE(transport().isStartingPlayback());
        EXPECT_EQ(error(), std::nullopt);
        player.completeSeek(true);
        EXPECT_TRUE(transport().isPlaying());
        model->pausePlayback();
        player.completeSeek(true);
    }
}

TEST_F(TransportTest, APlayerThatCannotBePreparedLeavesTheSessionStopped) {
    player.statusOfItems = PlayerStatus::unknown;
    player.completesSeeks = false;
    open();
    const auto becomes = [&](PlayerStatus status, const char* failure = "") {
        return [this, status, failure] { player.setStatus(status, failure); };
    };
    const auto waitedTooLong = [&] {
        scheduler.advance(9.99);
        EXPECT_TRUE(transport().isStartingPlayback());
        scheduler.advance(0.02);
    };
    const std::pair<std::vector<std::function<void()>>, const char*> failures[] = {
        {{becomes(PlayerStatus::failed)}, "Preview player failed while loading."},
        {{becomes(PlayerStatus::failed, "The disk is gone.")}, "The disk is gone."},
        {{becomes(PlayerStatus::unknown)}, "Preview player reported an unknown status."},
        {{waitedTooLong}, "Preview player did not become ready in time."},
        {{becomes(PlayerStatus::ready), becomes(PlayerStatus::unknown)},
         "Preview player stopped being ready while seeking."},
        {{becomes(PlayerStatus::ready), [&] { player.completeSeek(false); }},
         "Preview player could not prepare the requested frame."},
        {{becomes(PlayerStatus::ready), waitedTooLong}, "Preview player could not prepare the requested frame."},
    };
    for (const auto& [events, sentence] : failures) {
        player.setStatus(PlayerStatus::unknown);
        model->startPlayback(1); // again
        EXPECT_TRUE(transport().isStartingPlayback());
        for (const auto& event : events)
            event();
        expectStopped();
        EXPECT_EQ(error(), sentence);
    }
    player.completesSeeks = true;
    player.setStatus(PlayerStatus::failed, "Gone.");
    const std::size_t items = player.items.size();
    model->startPlayback(1); // loads anew
    EXPECT_EQ(player.items.size(), items + 1);
    player.setStatus(PlayerStatus::ready);
    EXPECT_TRUE(transport().isPlaying());
    EXPECT_FALSE(error());
    player.setStatus(PlayerStatus::failed, "Gone again.");
    expectStopped();
    EXPECT_EQ(error(), "Gone again.");
}

TEST_F(TransportTest, AStepIsOneOutputFrame) {
    open();
    constexpr double frame = 1.0 / 30;
    const auto after = [&](int frames) {
        model->nudgePlayhead(frames);
        return model->playheadSeconds();
    };
    EXPECT_EQ(after(-1), 0);
    EXPECT_NEAR(after(1), frame, 1e-9);
    EXPECT_NEAR(after(4), 5 * frame, 1e-9);
    EXPECT_NEAR(after(-2), 3 * frame, 1e-9);
    EXPECT_NEAR(after(10'000), 10 - frame, 1e-9); // the last frame
    model->startPlayback(-1);
    scheduler.advance(0.1);
    model->nudgePlayhead(1);
    expectStopped();

    // The curve has just changed: it is shown first. A step in its slow part is a tenth of a source frame.
    model->replaceKeyframes(slowBetween(3, 7));
    moveTo(5);
    const std::size_t items = player.items.size();
    EXPECT_NEAR(after(1), 5 + frame / 10, 1e-5);
    EXPECT_EQ(player.items.size(), items + 1);
    EXPECT_NEAR(playerTime(), outputTime(model->playheadSeconds()), 1e-9);
    EXPECT_EQ(rebuilds(), 0U); // and not again
}

TEST_F(TransportTest, AClipOfAMomentHasSteps) {
    media->duration = 0.2;
    open();
    model->nudgePlayhead(2);
    EXPECT_NEAR(model->playheadSeconds(), 2.0 / 30, 1e-9);
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
