#include "ui/graph/curve_graph_painter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <cmath>

namespace flowtide {
namespace {

constexpr QSize graphSize(400, 200);

/// A curve that stays at 0.5.
CurveGraphPicture flatCurve() {
    CurveGraphPicture picture;
    picture.axis = CurveEditorAxis::speed();
    picture.geometry = {TimeAxis::of(10, 40, 320, 1, 0.5), picture.axis.usualWindow(), true, 20, 160};
    picture.trim = {0, 10};
    picture.edited = curveLine([](double) { return 0.5; }, {}, picture.geometry, picture.trim);
    return picture;
}

QImage painted(const CurveGraphPicture& picture, double scale, const QRectF& clip) {
    QImage image((QSizeF(graphSize) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    paintCurveGraph(painter, picture, QRectF(QPointF(), graphSize), clip);
    return image;
}

class CurveGraphPainterTest : public testing::TestWithParam<double> {
protected:
    static QRgb at(const QImage& image, int pixelX, double y) {
        return image.pixel(pixelX, static_cast<int>(std::lround(y * GetParam())));
    }
};

TEST_P(CurveGraphPainterTest, TheAreaUnderTheCurveHasNoGaps) {
    const CurveGraphPicture picture = flatCurve();
    const double between = (picture.geometry.yOf(1) + picture.geometry.yOf(0.5)) / 2;
    const double above = picture.geometry.yOf(1) - 4;
    for (const QRectF& clip : {QRectF(QPointF(), graphSize), QRectF(100.5, 0, 41, 200)}) {
        const QImage image = painted(picture, GetParam(), clip);
        const QRectF seen = clip & picture.geometry.plot();
        const int last = static_cast<int>(std::floor(seen.right() * GetParam())) - 1;
        for (int x = static_cast<int>(std::ceil(seen.left() * GetParam())) + 1; x < last; ++x)
            ASSERT_NE(at(image, x, between), at(image, x, above)) << x;
    }
}

TEST_P(CurveGraphPainterTest, TheFormerCurveIsSeenWhereItWasAnother) {
    CurveGraphPicture picture = flatCurve();
    CurveGraphPicture::Drag drag;
    drag.curveBefore =
        curveLine([](double seconds) { return seconds < 5 ? 0.5 : 0.3; }, {}, picture.geometry, picture.trim);
    picture.drag = drag;
    const QImage image = painted(picture, GetParam(), QRectF(QPointF(), graphSize));
    const auto dotted = [&](double fromX, double toX) {
        int count = 0;
        for (int x = static_cast<int>(fromX * GetParam()); x < static_cast<int>(toX * GetParam()); ++x)
            count += at(image, x, picture.geometry.yOf(0.3)) != at(image, x, picture.geometry.yOf(0.3) - 6);
        return count;
    };
    EXPECT_LE(dotted(60, 190), 0);
    EXPECT_GE(dotted(210, 350), 30);
}

INSTANTIATE_TEST_SUITE_P(Scales, CurveGraphPainterTest, testing::Values(1.0, 1.25, 1.5, 2.0));

} // namespace
} // namespace flowtide
