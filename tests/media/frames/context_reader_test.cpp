// Frames have the same neighbours in a range alone as in the whole clip, at any rate and at none.
#include "media/frames/context_reader.h"
#include "media/frames/held_frames.h"
#include "tests/support/scripted_media.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace flowtide::test {
namespace {

/// Keeps the readers' promise for a list of frame times, and counts what is opened.
class TimesBackend : public ScriptedBackend {
public:
    explicit TimesBackend(std::vector<double> times)
        : ScriptedBackend({})
        , times_(std::move(times)) {}
    std::unique_ptr<VideoReader> openVideo(const ImportedClip&, PixelLayout, SourceRange range,
                                           const CancelCheck&) const override {
        ++opened;
        const auto after = std::upper_bound(times_.begin(), times_.end(), range.lower + 1e-6);
        const auto first = std::max<std::ptrdiff_t>(after - times_.begin() - 1, 0);
        return std::make_unique<FrameSequence>(times_, static_cast<std::size_t>(first), range.upper);
    }
    mutable int opened = 0;

private:
    std::vector<double> times_;
};

std::vector<double> paced(double interval, int count) {
    std::vector<double> times;
    for (int i = 0; i < count; ++i)
        times.push_back(interval * i);
    return times;
}

/// The numbers of the four frames around each of some times in a range.
std::vector<std::int64_t> neighbours(const MediaBackend& backend, const ImportedClip& clip, SourceRange range,
                                     const std::vector<double>& times) {
    const auto reader = openWithContext(backend, clip, {}, range);
    HeldFrames held(*reader, HeldFrames::Context::kept, contextReach(clip));
    std::vector<std::int64_t> numbers;
    for (const double time : times) {
        if (time < range.lower || time > range.upper) continue;
        held.advanceTo({time});
        for (const auto* frame : {&held.before(), &held.previous(), &held.next(), &held.after()})
            numbers.push_back(*frame ? numberOf((*frame)->frame).value_or(-2) : -1);
    }
    return numbers;
}

TEST(ContextReader, ARangeAloneHasTheNeighboursOfTheWhole) {
    std::vector<double> bursts; // half a second at 50 fps, then six seconds with a frame each
    for (int burst = 0; burst < 4; ++burst)
        for (int i = 0; i < 30; ++i)
            bursts.push_back(7 * burst + (i < 25 ? 0.02 * i : 0.5 + 1.1 * (i - 25)));
    std::vector<double> rounded; // 29.97 fps in whole milliseconds
    for (int i = 0; i < 300; ++i)
        rounded.push_back(std::round(i * 1001.0 / 30) / 1000);
    const struct {
        const char* name;
        std::vector<double> times;
        std::optional<MediaTime> interval;
        std::vector<double> starts;
        int mostOpened;
    } cases[] = {
        {"25 fps", paced(0.04, 250), MediaTime{1, 25}, {0.2, 4.4, 4.41, 9.9}, 1},
        {"3 fps", paced(1.0 / 3, 60), MediaTime{1, 3}, {0.1, 7.05, 7.3, 19.5}, 1},
        {"a frame every 5 s", paced(5, 40), MediaTime{5, 1}, {4.9, 5, 102.3, 104.9}, 1},
        {"bursts", bursts, std::nullopt, {0.3, 3, 6.9, 7.1, 12, 13.9, 14, 25}, 4},
        {"29.97 fps in milliseconds", rounded, std::nullopt, {0.01, 4.4, 5.005, 9.9}, 1},
    };
    for (const auto& [name, times, interval, starts, mostOpened] : cases) {
        TimesBackend backend(times);
        ImportedClip clip;
        clip.duration = times.back() + 0.02;
        clip.video.constantSampleInterval = interval;
        for (const double start : starts)
            for (const double length : {0.5 * times[1], 3 * times[1], 8.0}) {
                const SourceRange range{start, std::min(start + length, clip.duration)};
                std::vector<double> walk;
                for (int i = 0; i <= 40; ++i)
                    walk.push_back(range.lower + (range.upper - range.lower) * i / 40);
                const auto whole = neighbours(backend, clip, {0, clip.duration}, walk);
                backend.opened = 0;
                EXPECT_EQ(neighbours(backend, clip, range, walk), whole) << name << " from " << start;
                EXPECT_LE(backend.opened, mostOpened) << name << " from " << start;
            }
    }
}

TEST(ContextReader, ReachesNoFurtherThanItMust) {
    ImportedClip clip;
    clip.video.constantSampleInterval = MediaTime{1, 25};
    EXPECT_EQ(contextReach(clip), 0.25);
    clip.video.constantSampleInterval = MediaTime{1, 3};
    EXPECT_EQ(contextReach(clip), 2.0 / 3);
    clip.video.constantSampleInterval.reset();
    EXPECT_EQ(contextReach(clip), std::nullopt);
}

} // namespace
} // namespace flowtide::test
