// What a session hears of a tracking.
#include "editor/jobs/tracking_reporter.h"
#include "media/preview/source_frame_engine.h"
#include "tests/media/tracking/drawn_subject.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace flowtide::test {
namespace {

/// How far two pictures of one size lie apart, codes on average.
double difference(const DisplayFrame& a, const DisplayFrame& b) {
    double sum = 0;
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < 4 * a.width; ++x) {
            const auto at = [&](const DisplayFrame& frame) {
                return reinterpret_cast<const std::uint8_t*>(frame.pixels)[y * static_cast<long>(frame.stride) + x];
            };
            sum += std::abs(at(a) - at(b));
        }
    return sum / (4.0 * a.width * a.height);
}

TEST(TrackingReporter, PicturesComeATwelfthOfASecondApartAndSamplesAllTheSame) {
    const auto box = [](double t) { return SubjectBox{0.3 + 0.1 * t, 0.3, 0.15, 0.35}; };
    const SubjectBackend backend(DrawnSubject{box}, evenTimes(75, 0.04));
    const auto clip = std::make_shared<const ImportedClip>(drawnClip(3, {1, 25}, {0, 1, -1, 0, 180, 0})); // turned
    std::vector<TrackingProgress> heard;
    double now = 0;
    TrackingReporter reporter(
        *clip, [&](const TrackingProgress& progress) { heard.push_back(progress); }, [&] { return now += 0.05; });
    const SubjectTrackResult result =
        SubjectTrackingEngine(backend).track(*clip, {1.2}, box(1.2), {0, 3}, reporter.callbacks());

    SourceFrameEngine frames(backend, clip, {640, 640});
    std::size_t samples = 0;
    std::size_t shown = 0;
    for (const TrackingProgress& progress : heard) {
        samples += progress.samples.size();
        if (!progress.view) continue;
        ASSERT_TRUE(progress.view->box && progress.view->picture);
        EXPECT_NEAR(progress.view->box->midX(), box(progress.view->time).midX(), 0.02);
        if (++shown % 10) continue;
        const DisplayFrame whole = frames.frame({progress.view->time}).picture;
        ASSERT_EQ(progress.view->picture.width, whole.width);
        ASSERT_EQ(progress.view->picture.height, whole.height);
        EXPECT_LE(difference(progress.view->picture, whole), 2);
    }
    EXPECT_EQ(shown, 38U); // every second frame
    EXPECT_EQ(heard.front().view->time, 1.2);
    EXPECT_EQ(samples, result.samples.size());
    EXPECT_EQ(heard.back().fraction, 70 / 75.0);
}

} // namespace
} // namespace flowtide::test
