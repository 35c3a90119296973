// Whatever is done, in whatever order, the state can be stored, undone and redone.
#include "project/project_json.h"
#include "project/project_validation.h"
#include "tests/support/edit_storm.h"
#include "tests/support/session_stage.h"

#include <cstdlib>
#include <utility>

namespace flowtide::test {
namespace {

class EditStormTest : public SessionStage {
protected:
    /// FLOWTIDE_STORM_STEPS makes the storm longer than a suite has time for.
    static int steps() {
        const char* wanted = std::getenv("FLOWTIDE_STORM_STEPS"); // NOLINT(concurrency-mt-unsafe): before any thread
        return wanted ? std::atoi(wanted) : 2000;
    }
    /// The snapshot as it is under a trim of everything, ids of points at the trim left aside.
    static std::vector<std::pair<double, double>> userPoints(const SpeedKeyframes& keyframes) {
        std::vector<std::pair<double, double>> points;
        for (const SpeedKeyframe& keyframe : keyframes)
            if (keyframe.role == SpeedKeyframeRole::curve) points.emplace_back(keyframe.time, keyframe.speed);
        return points;
    }
};

TEST_F(EditStormTest, EveryStateCanBeStoredAndHistoryLeadsBackAndForth) {
    open("one.mov");
    clipFile("two.mov");
    EditStorm storm(*model, 11);
    for (int i = 0; i < steps(); ++i) {
        storm.step();
        ASSERT_NO_THROW(validate(model->projectSnapshot())) << "step " << i;
        ASSERT_LE(model->history().undoStack().size(), History::maxHistoryCount);
        if (i % 5 == 0) scheduler.advance(0.1);
        if (i % 3 == 0) player.update();
        if (i % 40 == 0) {
            model->pausePlayback(); // the playhead is stored when it stops
            rest();
            const FlowtideProject stored = storedProject();
            ASSERT_EQ(stored.edits, model->projectSnapshot().edits) << "step " << i;
        }
        if (i % 500 == 250) {
            model->importClip(folder / (i % 1000 < 500 ? "two.mov" : "one.mov"));
            scheduler.settle();
            ASSERT_TRUE(model->history().undoStack().empty());
        }
        if (i % 500 != 499) continue;
        model->endCurveEdit();
        model->resetTrimRange();
        while (!model->history().redoStack().empty())
            model->redo();
        const CurveSnapshot last = model->currentSnapshot();
        const CurveSnapshot first = model->history().undoStack().front();
        while (!model->history().undoStack().empty())
            model->undo();
        // A curve of nothing but points at a trim becomes one of points at the clip's ends.
        if (!userPoints(first.speed).empty()) {
            EXPECT_EQ(userPoints(model->curve().keyframes()), userPoints(first.speed));
        }
        EXPECT_EQ(model->zoom().zoomBlocks(), first.zooms);
        EXPECT_EQ(model->curve().smoothing(), first.smoothing);
        EXPECT_EQ(model->trackedRanges(), first.trackedRanges);
        while (!model->history().redoStack().empty())
            model->redo();
        EXPECT_EQ(model->currentSnapshot().speed, last.speed);
        EXPECT_EQ(model->currentSnapshot().center, last.center);
        EXPECT_EQ(model->zoom().zoomBlocks(), last.zooms);
        EXPECT_EQ(model->flow().opticalFlowRanges(), last.flowRanges);
    }
}

} // namespace
} // namespace flowtide::test
