// Where things lie on the picture.
#include "media/frames/display_frame.h"
#include "ui/viewer/viewer_geometry.h"

#include <gtest/gtest.h>

namespace flowtide::test {
namespace {

using namespace viewerGeometry;

constexpr QSize hd(1920, 1080);

TEST(ViewerGeometry, AFittedPictureHasThePixelsThatAreMadeForIt) {
    for (const QSize pane : {QSize(904, 352), QSize(905, 353), QSize(1130, 441), QSize(30, 30), QSize(10, 400)}) {
        const QRect place = pictureRect(pane, 12, hd, {});
        const OutputSize made = fittedSize({1920, 1080}, pictureBox(pane, 12, hd, 1));
        EXPECT_EQ(place.size(), QSize(static_cast<int>(made.width), static_cast<int>(made.height)));
        EXPECT_LE(place.width(), std::max(pane.width() - 24, 1));
        EXPECT_NEAR(place.left(), pane.width() - place.right() - 1, 1);
        EXPECT_NEAR(place.top(), pane.height() - place.bottom() - 1, 1);
    }
}

TEST(ViewerGeometry, PixelsThatAreWiderThanHighAreShownSo) {
    EXPECT_EQ(displayedSize(720, 576, 64.0 / 45), QSize(1024, 576));
    EXPECT_EQ(displayedSize(1920, 1080, 1), hd);
}

TEST(ViewerGeometry, AMagnifiedPictureFillsThePaneAndStaysInReach) {
    const QSize pane(664, 384);
    const double full = inspectionScale(pane, 12, hd, 1);
    EXPECT_EQ(pictureRect(pane, 12, hd, {full, {0.5, 0.5}}).size(), hd);
    EXPECT_EQ(fittedSize({1920, 1080}, pictureBox(pane, 12, hd, 3 * full)), (OutputSize{1920, 1080}));
    EXPECT_DOUBLE_EQ(magnification(pane, 12, hd, full), 1);
    EXPECT_EQ(inspectionScale({4000, 3000}, 12, hd, 1), 1);
    EXPECT_EQ(pictureRect(pane, 12, hd, {full, {0, 1}}).topLeft(), QPoint(12, 384 - 12 - 1080));

    const Inspection moved = panned(pane, 12, hd, {full, {0.5, 0.5}}, {30, -20});
    EXPECT_EQ(pictureRect(pane, 12, hd, moved).topLeft(),
              pictureRect(pane, 12, hd, {full, {0.5, 0.5}}).topLeft() + QPoint(30, -20));
    // What is dragged beyond the edge comes back at once.
    const Inspection edge = panned(pane, 12, hd, {full, {0.5, 0.5}}, {10'000, 0});
    EXPECT_EQ(pictureRect(pane, 12, hd, edge).left(), 12);
    EXPECT_EQ(pictureRect(pane, 12, hd, panned(pane, 12, hd, edge, {-5, 0})).left(), 7);
}

TEST(ViewerGeometry, AZoomKeepsItsFocalPointInPlace) {
    const QRectF window = zoomWindow({4, {0.25, 0.8}});
    EXPECT_TRUE(wholePicture.contains(window));
    const QPointF seen = fractions(window, {0.25, 0.8});
    EXPECT_NEAR(seen.x(), 0.25, 1e-12);
    EXPECT_NEAR(seen.y(), 0.8, 1e-12);
    EXPECT_EQ(zoomWindow({}), wholePicture);
    EXPECT_EQ(cropWindow(1, 0.25), QRectF(0.75, 0, 0.25, 1));
    EXPECT_EQ(part({100, 50, 200, 100}, cropWindow(0.5, 0.5)), QRectF(150, 50, 100, 100));
}

TEST(ViewerGeometry, DragsAreLimitedToThePicture) {
    EXPECT_DOUBLE_EQ(draggedTravel(0.5, 60, 400, 0.25), 0.7);
    EXPECT_EQ(draggedTravel(0.5, 600, 400, 0.25), 1);
    EXPECT_EQ(draggedTravel(0.5, 600, 400, 1), 0.5);

    EXPECT_EQ(boxBetween({0.5, 1.5}, {-1, 0.25}), (SubjectBox{0, 0.25, 0.5, 0.75}));
    const SubjectBox box{0.6, 0.1, 0.3, 0.2};
    EXPECT_EQ(movedBox(box, 0.5, -0.5), (SubjectBox{0.7, 0, 0.3, 0.2}));
    const SubjectBox grown = grownBox(box, 2, -1);
    EXPECT_EQ(grown.width, 1);
    EXPECT_EQ(grown.x, 0);
    EXPECT_GT(grown.height, smallestSubject);
}

TEST(ViewerGeometry, AComparedPictureCoversItsPane) {
    const QSize pane(400, 300);
    for (const QPointF pan : {QPointF(0, 0), QPointF(0.3, 0.5), QPointF(1, 1)})
        EXPECT_TRUE(coveringRect(pane, hd, pan).contains(QRect(QPoint(), pane)));
    EXPECT_EQ(coveringRect(pane, hd, {1, 0.5}).right(), 399);
    const OutputSize made = fittedSize({1920, 1080}, coveringBox(pane, hd));
    EXPECT_EQ(coveringRect(pane, hd, {}).size(), QSize(static_cast<int>(made.width), static_cast<int>(made.height)));
    const QPointF moved = pannedCover(pane, hd, {0.5, 0.5}, {-40, 25});
    EXPECT_EQ(coveringRect(pane, hd, moved).left(), coveringRect(pane, hd, {0.5, 0.5}).left() - 40);
    EXPECT_EQ(moved.y(), 0.5); // nothing is hidden there
    EXPECT_EQ(pannedCover(pane, hd, {0.5, 0.5}, {900, 0}).x(), 0);
}

} // namespace
} // namespace flowtide::test
