// The pointer and the keys on the viewer, on a session with a script.
#include "tests/support/scripted_media.h"
#include "tests/support/session_stage.h"
#include "tests/support/virtual_clock.h"
#include "ui/controls/buttons.h"
#include "ui/viewer/picture_feed.h"
#include "ui/viewer/state_chip.h"
#include "ui/viewer/transport_bar.h"
#include "ui/viewer/video_surface.h"
#include "ui/viewer/viewer_pane.h"

#include <QTest>

namespace flowtide::test {
namespace {

class ViewerTest : public SessionStage {
protected:
    /// The picture has 640 × 360 pixels, from (12, 12) on.
    void show() {
        open();
        pane.resize(664, 384);
        pane.show();
        scheduler.settle();
        ASSERT_EQ(surface().place().picture, QRectF(12, 12, 640, 360));
    }
    VideoSurface& surface() { return pane.surface(); }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}, bool isCancelled = false) {
        QTest::mousePress(&surface(), Qt::LeftButton, modifiers, from);
        QTest::mouseMove(&surface(), (from + to) / 2);
        QTest::mouseMove(&surface(), to);
        if (isCancelled) QTest::keyClick(&surface(), Qt::Key_Escape);
        QTest::mouseRelease(&surface(), Qt::LeftButton, modifiers, to);
        scheduler.settle();
    }
    double cropAtPlayhead() const { return model->framing().liveCropTravel(model->playheadSeconds()); }
    int undone() {
        int steps = 0;
        for (; !model->history().undoStack().empty(); ++steps)
            model->undo();
        return steps;
    }

    ScriptedBackend backend{MediaScript{}};
    VirtualClock clock;
    PreviewPlayer previewPlayer{{&backend, &clock, [](const std::function<void()>&) {}, {}}};
    PictureLoader loader{backend};
    PictureFeed feed{previewPlayer, *model, loader};
    ViewerPane pane{*model, feed};
};

TEST_F(ViewerTest, AFailedStartIsToldOnThePictureUnlessItIsToldBeside) {
    show();
    auto& chip = *pane.findChild<StateChip*>();
    player.statusOfItems = PlayerStatus::unknown;
    model->replaceKeyframes({point(0, 2), point(10, 2)});
    model->startPlayback(1);
    player.setStatus(PlayerStatus::failed, "The disk is gone.");
    scheduler.settle();
    EXPECT_TRUE(chip.isVisible());
    EXPECT_EQ(chip.accessibleName(), "The disk is gone.");
    pane.setFailuresToldElsewhere(true);
    EXPECT_FALSE(chip.isVisible());
}

TEST_F(ViewerTest, ADragOfThePictureKeysTheCropAtThePlayhead) {
    show();
    model->scrub(0.5);
    drag({320, 200}, {400, 200});
    EXPECT_EQ(undone(), 0); // the crop is off
    model->setVerticalCropEnabled(true);
    drag({320, 200}, {400, 200});
    EXPECT_EQ(undone(), 0); // and then locked
    model->setLockCropCenter(false);
    drag({320, 200}, {323, 200});
    EXPECT_EQ(undone(), 0); // a click

    std::vector<QString> hints;
    pane.onHint = [&](const QString& hint) { hints.push_back(hint); };
    const PicturePlace place = surface().place();
    EXPECT_NEAR(place.crop.center().x(), 332, 1);
    EXPECT_EQ(place.crop.height(), 360);
    drag({20, 200}, {20 + 64, 200}); // beside the frame
    EXPECT_NEAR(cropAtPlayhead(), 0.5 + 64 / (640 - place.crop.width()), 1e-9);
    EXPECT_FALSE(hints.empty() || hints.back().isEmpty());
    EXPECT_FALSE(model->framing().isCropDragActive());
    QTest::keyClick(&surface(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_NEAR(cropAtPlayhead(), 0.49 + 64 / (640 - place.crop.width()), 1e-9);
    EXPECT_EQ(undone(), 2);
    drag({320, 200}, {400, 200}, {}, true);
    EXPECT_FALSE(model->framing().isCropDragActive());
    EXPECT_EQ(cropAtPlayhead(), 0.5);
    EXPECT_EQ(undone(), 0);
}

TEST_F(ViewerTest, TheTargetIsTakenBeforeTheCropAndIsAPlaceWithinIt) {
    show();
    model->setVerticalCropEnabled(true);
    model->setLockCropCenter(false);
    model->addZoomBlock({2, 6});
    model->scrub(0.4);
    scheduler.settle();
    const Uuid id = *model->zoom().selectedZoomBlockID();
    const QRectF crop = surface().place().crop;
    const QPoint middle = crop.center().toPoint();
    const QPoint aside = middle + QPoint(qRound(crop.width() / 4), 90);
    drag(middle, aside);
    EXPECT_NEAR(model->zoom().block(id)->focalX, 0.75, 0.01);
    EXPECT_NEAR(model->zoom().block(id)->focalY, 0.75, 0.01);
    EXPECT_EQ(cropAtPlayhead(), 0.5);
    drag(aside, middle, Qt::AltModifier, true);
    EXPECT_TRUE(model->zoom().block(id)->focalKeyframes.empty());
    drag(aside, middle, Qt::AltModifier);
    ASSERT_EQ(model->zoom().block(id)->focalKeyframes.size(), 1U);
    EXPECT_NEAR(model->zoom().block(id)->focalKeyframes.front().x, 0.5, 0.01);
    QTest::keyClick(&surface(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_NEAR(model->zoom().block(id)->focalKeyframes.front().y, 0.49, 0.01);
    EXPECT_EQ(undone(), 4); // with the block itself
}

TEST_F(ViewerTest, ABoxAroundTheSubjectBeginsItsTracking) {
    show();
    model->setVerticalCropEnabled(true);
    model->setLockCropCenter(false);
    const auto choose = [&] {
        model->beginSubjectSelection();
        scheduler.settle();
        ASSERT_TRUE(model->tracking().selectingSubject());
    };
    choose();
    drag({100, 100}, {200, 200}, {}, true);
    EXPECT_TRUE(model->tracking().selectingSubject());
    QTest::mousePress(&surface(), Qt::LeftButton, {}, {12 + 64, 12 + 36});
    QTest::mouseMove(&surface(), {12 + 128, 12 + 72});
    QTest::mouseMove(&surface(), {12 + 192, 12 + 108});
    QTest::mouseRelease(&surface(), Qt::LeftButton, {}, {12 + 192, 12 + 108});
    ASSERT_TRUE(model->tracking().isTracking());
    EXPECT_NEAR(model->tracking().trackingPreview()->box->x, 0.1, 1e-9);
    EXPECT_NEAR(model->tracking().trackingPreview()->box->height, 0.2, 1e-9);
    EXPECT_TRUE(pane.endTracking());
    EXPECT_FALSE(model->tracking().isTracking());
    EXPECT_FALSE(pane.endTracking());

    choose(); // by keyboard
    QTest::keyClick(&surface(), Qt::Key_Return);
    EXPECT_FALSE(model->tracking().isTracking());
    QTest::keyClick(&surface(), Qt::Key_Right, Qt::AltModifier);
    QTest::keyClick(&surface(), Qt::Key_Right, Qt::AltModifier);
    QTest::keyClick(&surface(), Qt::Key_Return);
    ASSERT_TRUE(model->tracking().isTracking());
    EXPECT_NEAR(model->tracking().trackingPreview()->box->x, SubjectOverlay::firstBox.x + 0.01, 1e-9);
    scheduler.settle();
    ASSERT_TRUE(model->tracking().trackingMessage()); // the closing sentence
    EXPECT_TRUE(pane.endTracking());
    EXPECT_FALSE(model->tracking().trackingMessage());

    choose(); // and without another frame's box
    model->scrub(0.7);
    scheduler.settle();
    EXPECT_FALSE(model->tracking().selectingSubject());
}

TEST_F(ViewerTest, AMagnifiedPictureIsPannedByWhatNothingTakes) {
    show();
    surface().magnify(1);
    scheduler.settle();
    EXPECT_EQ(surface().place().picture.size(), QSizeF(1920, 1080));
    const QPointF before = surface().place().picture.topLeft();
    drag({300, 200}, {280, 230});
    EXPECT_EQ(surface().place().picture.topLeft(), before + QPointF(-20, 30));
    drag({300, 200}, {320, 170}, {}, true);
    EXPECT_EQ(surface().place().picture.topLeft(), before + QPointF(-20, 30));
    pane.resize(500, 384);
    EXPECT_EQ(surface().place().picture.size(), QSizeF(1920, 1080));
    surface().magnify({});
    EXPECT_EQ(model->timeline().inspectionScale(), 1);
    EXPECT_FALSE(surface().canMagnify(0.1));
}

TEST_F(ViewerTest, TheChipSaysWhatThePictureIs) {
    const auto words = [&] {
        scheduler.settle();
        return PictureState::of(*model).words.toStdString();
    };
    model->importClip(clipFile("clip.mov"));
    EXPECT_EQ(PictureState::of(*model).words.toStdString(), "Opening clip.mov…");
    EXPECT_EQ(words(), "");
    model->replaceKeyframes(slowBetween(2, 3));
    model->scrub(0.25);
    EXPECT_EQ(words(), "Preview not rendered");
    model->setOpticalFlow(false, model->flow().opticalFlowRanges().front().id);
    EXPECT_EQ(words(), "Original frames · Optical Flow off");
    model->scrub(0.9);
    EXPECT_EQ(words(), "");
    model->startPlayback(-4);
    EXPECT_EQ(words(), "4x backward");
    player.statusOfItems = PlayerStatus::unknown;
    player.setStatus(PlayerStatus::unknown);
    model->startPlayback(1);
    EXPECT_EQ(words(), "Preparing playback…");
}

TEST_F(ViewerTest, TheTransportOffersWhatCanBeDone) {
    TransportBar bar(*model, [](Command) {});
    bar.resize(900, 52);
    const auto button = [&](const QString& name) -> IconButton& {
        for (auto* each : bar.findChildren<IconButton*>())
            if (each->accessibleName() == name) return *each;
        throw std::runtime_error(name.toStdString());
    };
    EXPECT_FALSE(button("Play").isEnabled());
    open();
    model->replaceKeyframes(slowBetween(2, 3));
    scheduler.settle();
    EXPECT_TRUE(button("Play").isEnabled());
    EXPECT_FALSE(button("Loop").isEnabled());
    model->selectOpticalFlowRange(model->flow().opticalFlowRanges().front().id);
    scheduler.settle();
    button("Loop").click();
    EXPECT_TRUE(model->timeline().loopPreview());
    button("Compare").click();
    EXPECT_TRUE(model->comparison().comparisonEnabled());
    EXPECT_TRUE(pane.endComparison());
    EXPECT_FALSE(pane.endComparison());
    EXPECT_FALSE(model->comparison().comparisonEnabled());
    model->togglePlayback();
    scheduler.settle();
    EXPECT_TRUE(button("Pause").isEnabled());
}

} // namespace
} // namespace flowtide::test
