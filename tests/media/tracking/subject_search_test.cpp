// A lost subject is found wherever it may have gone.
#include "media/tracking/correlation_tracker.h"
#include "media/tracking/subject_search.h"
#include "tests/media/tracking/drawn_subject.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flowtide::tracking {
namespace {

constexpr SubjectBox seed{0.45, 0.42, 0.08, 0.16};

SubjectBox movedBy(double x, double y) {
    return {seed.x + x, seed.y + y, seed.width, seed.height};
}

/// The subject in its box, and at places beside it others of its colours, which look different.
SubjectPicture pictureOf(const SubjectBox& box, const std::vector<SubjectBox>& others = {}) {
    constexpr int width = 640;
    constexpr int height = 360;
    const test::DrawnSubject subject{[&](double) { return box; }};
    VideoFrame frame = test::numberedFrame({}, width, height, 0);
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int row = 0; row < planeHeight({}, height, plane); ++row)
            for (int column = 0; column < planeWidth({}, width, plane); ++column) {
                const double x = (column + 0.5) / planeWidth({}, width, plane);
                const double y = (row + 0.5) / planeHeight({}, height, plane);
                test::Color color = subject.at(x, y, 0, test::DrawnSubject::groundAt(x, y));
                for (const SubjectBox& other : others) // the subject upside down and turned
                    color = test::DrawnSubject{[&](double) { return other; }}.at(2 * other.midX() - x,
                                                                                 2 * other.midY() - y, 0, color);
                const_cast<std::uint8_t*>(frame.planes[plane].data)[row * frame.planes[plane].stride + column] =
                    static_cast<std::uint8_t>(std::lround(color[plane]));
            }
    return *SubjectPictureMaker({}).make(frame);
}

TEST(SubjectSearchTest, LooksOnEverySideAsFarAsTheSubjectMayBe) {
    const auto tracker = makeCorrelationTracker(pictureOf(seed), seed);
    for (const auto& [x, y] :
         {std::pair{-0.3, 0.0}, {0.3, 0.0}, {0.0, -0.35}, {0.0, 0.35}, {-0.25, 0.3}, {0.2, -0.3}}) {
        const SubjectBox truth = movedBy(x, y);
        const auto found = findAgain(*tracker, pictureOf(truth), {seed, 0, 0, 0.5, {}});
        ASSERT_TRUE(found) << x << ", " << y;
        EXPECT_NEAR(found->box.midX(), truth.midX(), 0.02) << x << ", " << y;
        EXPECT_NEAR(found->box.midY(), truth.midY(), 0.04) << x << ", " << y;
    }
}

TEST(SubjectSearchTest, IsPreferredToOthersOfItsColors) {
    const auto tracker = makeCorrelationTracker(pictureOf(seed), seed);
    const std::vector<SubjectBox> others{movedBy(-0.2, -0.3), movedBy(0.05, -0.3), movedBy(0.25, 0)};
    const SubjectBox truth = movedBy(-0.2, 0.3);
    const auto found = findAgain(*tracker, pictureOf(truth, others), {seed, 0, 0, 0.6, {}});
    ASSERT_TRUE(found);
    EXPECT_NEAR(found->box.midX(), truth.midX(), 0.02);
    EXPECT_NEAR(found->box.midY(), truth.midY(), 0.04);
}

} // namespace
} // namespace flowtide::tracking
