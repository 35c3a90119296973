// Histograms of a box's colours, and how far two are apart.
#include "media/tracking/subject_appearance.h"
#include "tests/support/clip_maker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <numeric>

namespace flowtide::tracking {
namespace {

/// A picture whose left and right halves have one colour each.
SubjectPicture twoColors(std::array<int, 3> left, std::array<int, 3> right) {
    VideoFrame frame = test::numberedFrame({}, 160, 80, 0);
    for (std::size_t plane = 0; plane < 3; ++plane)
        for (int y = 0; y < planeHeight({}, 80, plane); ++y) {
            auto* row = const_cast<std::uint8_t*>(frame.planes[plane].data) + y * frame.planes[plane].stride;
            const int width = planeWidth({}, 160, plane);
            std::memset(row, left[plane], static_cast<std::size_t>(width / 2));
            std::memset(row + width / 2, right[plane], static_cast<std::size_t>(width / 2));
        }
    return *SubjectPictureMaker({}).make(frame);
}

constexpr SubjectBox leftBox{0.05, 0.1, 0.4, 0.8};
constexpr SubjectBox rightBox{0.55, 0.1, 0.4, 0.8};

TEST(SubjectAppearanceTest, DistanceIsBhattacharyyas) {
    const auto of = [](std::vector<double> bins) {
        bins.resize(15);
        return SubjectAppearance{bins};
    };
    EXPECT_EQ(SubjectAppearance::distance(of({0.5, 0.5}), of({0.5, 0.5})), 0);
    EXPECT_EQ(SubjectAppearance::distance(of({1}), of({0, 1})), 1);
    EXPECT_NEAR(SubjectAppearance::distance(of({0.25, 0.75}), of({1})), 1 - 0.5, 1e-12);
    for (const std::size_t count : {std::size_t{0}, std::size_t{14}, std::size_t{16}}) {
        const SubjectAppearance other{std::vector<double>(count, 1.0 / 15)};
        EXPECT_EQ(SubjectAppearance::distance(other, of({1})), 1) << count;
        EXPECT_EQ(SubjectAppearance::distance(of({1}), other), 1) << count;
        EXPECT_EQ(SubjectAppearance::distance(other, other), 1) << count;
    }
    const SubjectAppearance moved = of({1}).towards(of({0, 1}), 0.25);
    EXPECT_EQ(moved.bins[0], 0.75);
    EXPECT_EQ(moved.bins[1], 0.25);
}

TEST(SubjectAppearanceTest, GreysFillTheBinsBesideTheirLightAndColorsHalfOfThemTheirHue) {
    // Of nine greys from black (16) to white (235).
    const int code = 100;
    const double place = (code - 16) / 219.0 * 8;
    const auto whole = static_cast<std::size_t>(place);
    const auto grey = SubjectAppearance::colors(twoColors({code, 128, 128}, {code, 128, 128}), leftBox);
    ASSERT_EQ(grey.bins.size(), 15u);
    EXPECT_NEAR(std::accumulate(grey.bins.begin(), grey.bins.end(), 0.0), 1, 1e-9);
    EXPECT_NEAR(grey.bins[6 + whole], 1 - (place - static_cast<double>(whole)), 1e-6);
    EXPECT_NEAR(grey.bins[7 + whole], place - static_cast<double>(whole), 1e-6);

    // Cr alone: a quarter turn, between the second and the third of six hues.
    const auto red = SubjectAppearance::colors(twoColors({code, 128, 220}, {code, 128, 220}), leftBox);
    EXPECT_NEAR(std::accumulate(red.bins.begin(), red.bins.begin() + 6, 0.0), 0.5, 1e-6);
    EXPECT_NEAR(red.bins[1] + red.bins[2], 0.5, 1e-6);
    EXPECT_NEAR(red.bins[1], 0.25, 0.02) << "the chroma codes are taken in steps of four";
    const auto full = [&](bool isFull) {
        SubjectPicture picture = twoColors({255, 128, 128}, {235, 128, 128});
        picture.fullRange = isFull;
        return picture;
    };
    EXPECT_NEAR(SubjectAppearance::colors(full(true), leftBox).bins[14], 1, 1e-6);
    EXPECT_LT(SubjectAppearance::colors(full(true), rightBox).bins[14], 0.5);
    EXPECT_NEAR(SubjectAppearance::colors(full(false), rightBox).bins[14], 1, 1e-6);
}

TEST(SubjectAppearanceTest, OnlyTheBoxCountsAndItsMiddleMost) {
    const SubjectPicture picture = twoColors({60, 70, 90}, {180, 128, 200});
    const auto left = SubjectAppearance::colors(picture, leftBox);
    const auto right = SubjectAppearance::colors(picture, rightBox);
    EXPECT_NEAR(SubjectAppearance::distance(left, right), 1, 1e-6);
    // A quarter of the box at its rim weighs less than a quarter: its share of ∫ max(0, 1 − 0.9 ρ²).
    double rim = 0;
    double all = 0;
    for (int i = 0; i < 24; ++i)
        for (int j = 0; j < 24; ++j) {
            const double u = (i + 0.5) / 12 - 1;
            const double v = (j + 0.5) / 12 - 1;
            const double weight = std::max(0.0, 1 - 0.9 * (u * u + v * v));
            all += weight;
            if (i >= 18) rim += weight;
        }
    const auto mixed = SubjectAppearance::colors(picture, {0.2, 0.1, 0.4, 0.8});
    const double shared = std::sqrt(1 - rim / all);
    EXPECT_NEAR(SubjectAppearance::distance(mixed, left), 1 - shared, 0.01);
    // Beyond the frame its edge goes on.
    EXPECT_NEAR(SubjectAppearance::distance(SubjectAppearance::colors(picture, {-0.3, -0.5, 0.4, 2}), left), 0, 1e-6);
}

} // namespace
} // namespace flowtide::tracking
