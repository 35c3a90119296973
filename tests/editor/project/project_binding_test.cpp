// Autosave, import, relink: nothing is lost, and nothing of somebody else's overwritten.
#include "project/project_json.h"
#include "tests/support/session_stage.h"

#include <sys/stat.h>

namespace flowtide::test {
namespace {

namespace fs = std::filesystem;

class ProjectBindingTest : public SessionStage {
protected:
    std::string message() const { return model->binding().projectSaveMessage(); }
    std::string storedText() const {
        return readFile(ProjectStore(folder / "state").projectFile(model->binding().projectID()));
    }
    /// A document's text without its date.
    static std::string undated(const std::string& text) {
        FlowtideProject project = decodeProject(text);
        project.savedAt = {};
        return encodeProject(project);
    }
};

TEST_F(ProjectBindingTest, AnEditIsStoredAThirdOfASecondLater) {
    open();
    EXPECT_EQ(storedProject().edits.smoothing, 0.5); // at once, when the project began
    EXPECT_EQ(message(), "Saved");
    model->setCurveSmoothing(0.1);
    EXPECT_EQ(message(), "Saving…");
    for (int i = 1; i < 10; ++i) {
        scheduler.advance(0.034);
        model->setCurveSmoothing(0.1 + 0.01 * i);
    }
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::projects), 0U);
    scheduler.advance(0.35 - 9 * 0.034 + 1e-9);
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::projects), 1U); // of ten edits
    scheduler.advance(5);
    EXPECT_EQ(scheduler.jobCount(BackgroundQueue::projects), 1U);
    model->setCurveSmoothing(0.18); // while it is being stored
    scheduler.settle();
    EXPECT_EQ(message(), "Saving…");
    model->setCurveSmoothing(0.19);
    rest();
    EXPECT_EQ(message(), "Saved");
    EXPECT_DOUBLE_EQ(storedProject().edits.smoothing, 0.19);
    ASSERT_EQ(model->binding().recentProjects().size(), 1U);
    EXPECT_EQ(model->binding().recentProjects()[0].name, "clip.mov");

    // A drag that does not end is stored all the same.
    for (int i = 0; i < 40; ++i) {
        model->setCurveSmoothing(0.2 + 0.01 * i);
        scheduler.advance(0.05);
    }
    EXPECT_GE(scheduler.jobCount(BackgroundQueue::projects), 4U);
}

TEST_F(ProjectBindingTest, ARestartBringsEverythingBack) {
    open();
    model->replaceKeyframes(slowBetween(2, 5));
    model->setOpticalFlow(false, model->flow().opticalFlowRanges()[0].id);
    model->selectOpticalFlowRange(model->flow().opticalFlowRanges()[0].id);
    model->setLoopPreview(true);
    model->applyTrimRange(1, 9);
    model->addZoomBlock({6, 7});
    model->updateZoomFocal(model->zoom().zoomBlocks()[0].id, 0.3, 0.4, true);
    model->setVerticalCropEnabled(true);
    model->setCropAspectRatio(CropAspectRatio::fourByFive);
    model->setCenterSmoothing(0.25);
    model->setLockCropCenter(false);
    model->replaceCenterKeyframes({point(1, 0.2), point(8, 0.8)});
    SubjectTrackResult track;
    for (int frame = 90; frame < 200; ++frame)
        track.samples.push_back({frame / 30.0, 0.4});
    track.lostFrames = {200 / 30.0};
    track.lostAfterSeed = track.lostSubject = true;
    model->applySubjectTrackingResult(track);
    model->setFrameInterpolation(FrameInterpolation::nearest);
    model->setPreviewResolution(PreviewResolution::full);
    model->setSmartPreviewEnabled(true);
    model->scrub(0.45);
    model->setTimelineZoom(3);
    model->setTimelineCenter(0.6);
    const CurveSnapshot snapshot = model->currentSnapshot();
    const std::string unsaved = encodeProject(model->projectSnapshot());
    makeModel(); // what waits to be saved is saved as the session ends
    model->restoreLastProject();
    scheduler.settle();
    ASSERT_TRUE(model->clip());
    EXPECT_EQ(model->currentSnapshot(), snapshot);
    EXPECT_EQ(undated(encodeProject(model->projectSnapshot())), undated(unsaved));
    EXPECT_EQ(undated(storedText()), undated(unsaved));
    EXPECT_TRUE(model->history().undoStack().empty());
    ASSERT_TRUE(player.item()); // after the edits, for the player to show them
    EXPECT_EQ(player.item()->media.timeMap.sourceRange(), (SourceRange{1, 9}));
    EXPECT_NEAR(player.currentTime().value, player.item()->media.timeMap.outputTime({4.5}).value, 1e-6);

    // Opening the clip instead finds the same project.
    makeModel();
    model->importClip(folder / "clip.mov");
    scheduler.settle();
    EXPECT_EQ(undated(storedText()), undated(unsaved));
}

TEST_F(ProjectBindingTest, AStartGoesOnWithWhatWasOpenLast) {
    for (const char* name : {"one.mov", "two.mov", "one.mov"}) {
        open(name);
        rest();
    }
    const Uuid last = model->binding().projectID();
    makeModel();
    model->restoreLastProject();
    scheduler.settle();
    EXPECT_EQ(model->binding().projectID(), last);
}

TEST_F(ProjectBindingTest, InstallingEditsIsNoStepOfHistory) {
    open("one.mov");
    rest();
    ProjectEdits edits = model->projectSnapshot().edits;
    edits.smoothing = 0.25;
    model->applyProjectEdits(edits);
    rest();
    EXPECT_TRUE(model->history().undoStack().empty());
    EXPECT_EQ(storedProject().edits.smoothing, 0.25);
}

TEST_F(ProjectBindingTest, WhatCannotBeStoredIsSaidAndStoredLater) {
    open();
    fs::permissions(folder / "state", fs::perms::owner_read | fs::perms::owner_exec);
    const fs::path file = ProjectStore(folder / "state").projectFile(model->binding().projectID());
    fs::remove_all(folder / "state");
    writeFile(folder / "state", "in the way");
    model->setCurveSmoothing(0.9);
    rest();
    EXPECT_EQ(message().find("Could not save: "), 0U) << message();
    EXPECT_FALSE(model->alert().showError());
    EXPECT_EQ(model->curve().smoothing(), 0.9);
    fs::remove(folder / "state");
    model->setCurveSmoothing(0.8);
    rest();
    EXPECT_EQ(message(), "Saved");
    EXPECT_EQ(storedProject().edits.smoothing, 0.8);

    // Before it goes there is another attempt, without another edit.
    double smoothing = 0.6;
    for (const auto& leave :
         {std::function<void()>([&] { makeModel(); }), std::function<void()>([&] { open("other.mov"); })}) {
        open();
        fs::remove_all(folder / "state");
        writeFile(folder / "state", "in the way");
        model->setCurveSmoothing(smoothing);
        rest();
        EXPECT_EQ(message().find("Could not save: "), 0U) << message();
        fs::remove(folder / "state");
        const fs::path left = ProjectStore(folder / "state").projectFile(model->binding().projectID());
        leave();
        scheduler.settle();
        ASSERT_TRUE(fs::exists(left));
        EXPECT_EQ(ProjectStore::load(left).edits.smoothing, smoothing);
        smoothing -= 0.1;
    }

    fs::remove_all(folder / "state");
    writeFile(folder / "state", "in the way");
    model->setCurveSmoothing(0.7);
    model->reset(); // nobody would see the message
    scheduler.settle();
    ASSERT_TRUE(model->alert().errorMessage());
    EXPECT_EQ(model->alert().errorMessage()->sentence, "Could not save your project");
    model->dismissError();
    model->importClip(clipFile("other.mov"));
    scheduler.settle();
    EXPECT_TRUE(model->clip());
    EXPECT_TRUE(model->alert().showError()); // a project that has never been stored
}

TEST_F(ProjectBindingTest, TwoWindowsGoSeparateWaysWithoutOverwriting) {
    open();
    auto other = newModel();
    other->importClip(folder / "clip.mov");
    scheduler.settle();
    ASSERT_TRUE(other->clip());
    const Uuid id = other->binding().projectID();
    EXPECT_EQ(id, model->binding().projectID());
    other->setCurveSmoothing(0.2);
    rest();
    model->setCurveSmoothing(0.9);
    rest();
    EXPECT_NE(model->binding().projectID(), id);
    EXPECT_EQ(message(), "Saved as a copy: this project was changed elsewhere.");
    EXPECT_EQ(storedProject().edits.smoothing, 0.9);
    EXPECT_EQ(ProjectStore::load(ProjectStore(folder / "state").projectFile(id)).edits.smoothing, 0.2);
    model->setCurveSmoothing(0.8);
    other->setCurveSmoothing(0.3);
    rest();
    EXPECT_EQ(message(), "Saved");
    EXPECT_EQ(storedProject().edits.smoothing, 0.8);
    EXPECT_EQ(ProjectStore::load(ProjectStore(folder / "state").projectFile(id)).edits.smoothing, 0.3);
    EXPECT_EQ(other->binding().projectSaveMessage(), "Saved");
}

TEST_F(ProjectBindingTest, ASaveBehindTheOneThatBecameACopyGoesToTheCopy) {
    open();
    auto other = newModel();
    other->importClip(folder / "clip.mov");
    scheduler.settle();
    other->setCurveSmoothing(0.2);
    rest();
    model->setCurveSmoothing(0.9);
    model->saveProjectNow();
    model->setCurveSmoothing(0.8);
    model->saveProjectNow(); // the first has not begun yet
    scheduler.settle();
    EXPECT_EQ(message(), "Saved");
    EXPECT_EQ(storedProject().edits.smoothing, 0.8);
    EXPECT_EQ(ProjectStore(folder / "state").recent().size(), 2U);
    EXPECT_EQ(
        ProjectStore::load(ProjectStore(folder / "state").projectFile(other->binding().projectID())).edits.smoothing,
        0.2);
}

TEST_F(ProjectBindingTest, AMovedClipIsAskedForAndAnotherRefused) {
    open();
    model->setCurveSmoothing(0.3);
    rest();
    const fs::path project = ProjectStore(folder / "state").projectFile(model->binding().projectID());
    fs::rename(folder / "clip.mov", folder / "moved.mov");
    makeModel();
    model->openProject(project);
    scheduler.settle();
    EXPECT_FALSE(model->clip());
    ASSERT_TRUE(model->clips().pendingRelinkProject());
    EXPECT_EQ(model->clips().isOpening(), "");
    model->relinkProject(clipFile("wrong.mov"));
    scheduler.settle();
    ASSERT_TRUE(model->alert().errorMessage());
    EXPECT_EQ(model->alert().errorMessage()->sentence,
              "This video does not match the project's original clip. Choose the original file to relink it.");
    EXPECT_TRUE(model->clips().pendingRelinkProject());
    model->relinkProject(folder / "moved.mov");
    scheduler.settle();
    ASSERT_TRUE(model->clip());
    EXPECT_FALSE(model->clips().pendingRelinkProject());
    EXPECT_EQ(model->curve().smoothing(), 0.3);
    EXPECT_EQ(storedProject().source.url.filePath(), folder / "moved.mov");
}

TEST_F(ProjectBindingTest, RelinkingAnOlderStateLeavesTheNewerOne) {
    open();
    model->setCurveSmoothing(0.3);
    model->saveProjectCopy(folder / "copy.flowtide");
    model->setCurveSmoothing(0.6);
    rest();
    const Uuid id = model->binding().projectID();
    fs::rename(folder / "clip.mov", folder / "moved.mov");
    makeModel();
    open("other.mov");
    model->startPlayback(1);
    model->openProject(folder / "copy.flowtide");
    scheduler.settle();
    ASSERT_TRUE(model->clips().pendingRelinkProject());
    EXPECT_FALSE(model->transport().isPlaying()); // under the question for the clip
    model->relinkProject(folder / "moved.mov");
    model->forgetPendingRelink(); // while it is being looked at
    scheduler.settle();
    EXPECT_EQ(model->clip()->url.filename(), "other.mov");
    EXPECT_EQ(model->clips().isOpening(), "");

    model->openProject(folder / "copy.flowtide");
    scheduler.settle();
    model->relinkProject(folder / "moved.mov");
    scheduler.settle();
    EXPECT_EQ(model->clip()->url.filename(), "moved.mov");
    EXPECT_EQ(model->curve().smoothing(), 0.3);
    EXPECT_EQ(message(), "Saved as a copy: this project was changed elsewhere.");
    EXPECT_EQ(ProjectStore::load(ProjectStore(folder / "state").projectFile(id)).edits.smoothing, 0.6);
}

TEST_F(ProjectBindingTest, WhatIsOpenGoesOnWhenItIsOpenedAgain) {
    open();
    rest();
    const Uuid id = model->binding().projectID();
    const fs::path file = ProjectStore(folder / "state").projectFile(id);
    const auto reopen = [&](bool byItsProject) {
        if (byItsProject)
            model->openProject(file);
        else
            model->importClip(folder / "clip.mov");
    };
    double smoothing = 0.6;
    for (const bool byItsProject : {false, true}) {
        model->startPlayback(1);
        scheduler.advance(0.2);
        reopen(byItsProject);
        // What was stored is read; then there is an edit.
        for (const BackgroundQueue queue :
             {BackgroundQueue::projects, BackgroundQueue::clips, BackgroundQueue::projects}) {
            if (scheduler.runJob(queue) && model->clips().isOpening().empty()) break;
            scheduler.turn();
        }
        model->setCurveSmoothing(smoothing);
        scheduler.settle();
        rest();
        EXPECT_EQ(model->curve().smoothing(), smoothing) << byItsProject;
        EXPECT_EQ(model->binding().projectID(), id);
        EXPECT_EQ(message(), "Saved");
        EXPECT_EQ(storedProject().edits.smoothing, smoothing);
        EXPECT_EQ(ProjectStore(folder / "state").recent().size(), 1U);
        smoothing += 0.1;
    }
}

TEST_F(ProjectBindingTest, AFirstSaveWhoseListFailsIsNoOneElses) {
    fs::create_directories(folder / "state/recent-projects.json"); // in the way
    model->importClip(clipFile("clip.mov"));
    scheduler.settle();
    const Uuid id = model->binding().projectID();
    EXPECT_TRUE(model->alert().showError());
    EXPECT_EQ(storedProject().edits.smoothing, 0.5);
    fs::remove(folder / "state/recent-projects.json");
    model->setCurveSmoothing(0.3);
    rest();
    EXPECT_EQ(message(), "Saved");
    EXPECT_EQ(model->binding().projectID(), id);
    EXPECT_EQ(storedProject().edits.smoothing, 0.3);
}

TEST_F(ProjectBindingTest, WhatCannotBeOpenedLeavesTheOpenClip) {
    open();
    model->setCurveSmoothing(0.3);
    media->failure = "broken";
    model->importClip(clipFile("bad.mov"));
    scheduler.settle();
    EXPECT_TRUE(model->alert().showError());
    EXPECT_EQ(model->clips().isOpening(), "");
    EXPECT_EQ(model->clip()->url.filename(), "clip.mov");
    EXPECT_EQ(model->curve().smoothing(), 0.3);
    media->failure.reset();
    writeFile(folder / "no.flowtide", "{}");
    model->openProject(folder / "no.flowtide");
    scheduler.settle();
    EXPECT_EQ(model->clip()->url.filename(), "clip.mov");

    // A shorter clip of the same content: its projects no longer fit, and stay where they are.
    rest();
    const Uuid id = model->binding().projectID();
    media->duration = 5;
    model->importClip(folder / "clip.mov");
    scheduler.settle();
    EXPECT_EQ(model->clip()->duration, 5);
    EXPECT_NE(model->binding().projectID(), id);
    EXPECT_TRUE(fs::exists(ProjectStore(folder / "state").projectFile(id)));
}

TEST_F(ProjectBindingTest, CopiesGoWhereTheUserSaysButNeverOverTheClip) {
    open();
    model->setCurveSmoothing(0.3);
    model->saveProjectCopy(folder / "copy.flowtide");
    scheduler.settle();
    EXPECT_EQ(ProjectStore::load(folder / "copy.flowtide").edits.smoothing, 0.3);
    EXPECT_FALSE(model->alert().showError());
    ::chmod((folder / "copy.flowtide").c_str(), 0640); // shared with a group, and stays so
    model->saveProjectCopy(folder / "copy.flowtide");
    scheduler.settle();
    EXPECT_EQ(fs::status(folder / "copy.flowtide").permissions(), fs::perms(0640));
    const std::string clip = readFile(folder / "clip.mov");
    model->saveProjectCopy(folder / "clip.mov");
    scheduler.settle();
    EXPECT_TRUE(model->alert().showError());
    EXPECT_EQ(readFile(folder / "clip.mov"), clip);
    model->removeFromRecent(model->binding().projectID());
    scheduler.settle();
    EXPECT_TRUE(model->binding().recentProjects().empty());

    // An older state that is opened again does not replace the newer one.
    rest();
    model->setCurveSmoothing(0.6);
    rest();
    const Uuid id = model->binding().projectID();
    model->openProject(folder / "copy.flowtide");
    scheduler.settle();
    EXPECT_EQ(model->curve().smoothing(), 0.3);
    EXPECT_NE(model->binding().projectID(), id);
    EXPECT_EQ(ProjectStore::load(ProjectStore(folder / "state").projectFile(id)).edits.smoothing, 0.6);
}

} // namespace
} // namespace flowtide::test
