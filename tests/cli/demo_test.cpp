// What the demo's clip shows and sounds like, at places that can be reckoned by hand.
#include "cli/demo.h"
#include "tests/support/scripted_media.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <sstream>

namespace flowtide::test {
namespace {

struct RecordedMovie {
    VideoSettings video;
    AudioSettings audio;
    std::vector<VideoFrame> frames;
    std::vector<float> samples;
    int steps = 0; ///< started, both tracks finished, finished
};

/// Keeps what is written, and plays the script to whoever reads.
class RecordingBackend : public ScriptedBackend {
public:
    RecordingBackend(const MediaScript& script, std::vector<RecordedMovie>& movies)
        : ScriptedBackend(script)
        , movies_(movies) {}

    std::unique_ptr<MovieWriter> createMovie(OutputFile& output, FileType, const CarriedMetadata&) const override {
        class Writer : public MovieWriter {
        public:
            Writer(RecordedMovie& movie, OutputFile& output)
                : movie_(movie)
                , output_(output) {}
            void addVideo(const VideoSettings& settings) override { movie_.video = settings; }
            void addAudio(const AudioSettings& settings) override { movie_.audio = settings; }
            void start() override {
                ++movie_.steps;
                output_.write(std::vector<std::uint8_t>{'m', 'o', 'v', 'i', 'e'});
            }
            void appendVideo(const VideoFrame& frame, std::int64_t index, std::int64_t) override {
                EXPECT_EQ(index, static_cast<std::int64_t>(movie_.frames.size()));
                movie_.frames.push_back(frame);
            }
            void appendAudio(std::span<const float> samples) override {
                movie_.samples.insert(movie_.samples.end(), samples.begin(), samples.end());
            }
            void finishVideo() override { ++movie_.steps; }
            void finishAudio() override { ++movie_.steps; }
            void finish() override { ++movie_.steps; }

        private:
            RecordedMovie& movie_;
            OutputFile& output_;
        };
        return std::make_unique<Writer>(movies_.emplace_back(), output);
    }

private:
    std::vector<RecordedMovie>& movies_;
};

int sample(const VideoFrame& frame, std::size_t plane, int x, int y) {
    return frame.planes[plane].data[y * frame.planes[plane].stride + x];
}

/// A demo whose movies are kept instead of written.
struct RecordedDemo {
    std::vector<RecordedMovie> movies;
    std::ostringstream output;
    std::ostringstream error;

    int run(const std::filesystem::path& folder) {
        movies.reserve(2);
        MediaScript script;
        script.source = plainProbe();
        script.probeOfOutput = [&](ProbedMedia media) {
            media.duration = static_cast<double>(movies.back().frames.size()) / 25;
            return media;
        };
        return runDemo(folder, RecordingBackend(script, movies), {output, error});
    }
};

TEST(Demo, TheClipIsWhatItIsSaidToBe) {
    const TemporaryFolder folder;
    RecordedDemo demo;
    ASSERT_EQ(demo.run(folder / "new/demo"), 0) << demo.error.str();
    const std::string printed = demo.output.str();
    const std::vector<RecordedMovie>& movies = demo.movies;
    EXPECT_NE(printed.find((folder / "new/demo/demo.mov").string() + ".\n"), std::string::npos) << printed;
    EXPECT_NE(printed.find((folder / "new/demo/demo-retimed.mov").string() + ".\n"), std::string::npos);

    const RecordedMovie& clip = movies[0];
    EXPECT_EQ(clip.steps, 4);
    EXPECT_EQ(clip.video.frameDuration, (MediaTime{1, 30}));
    EXPECT_EQ(clip.video.width, 640);
    EXPECT_EQ(clip.video.height, 360);
    EXPECT_EQ(clip.video.expectedDuration, 4);
    ASSERT_EQ(clip.frames.size(), 120U);
    ASSERT_EQ(clip.samples.size(), 4U * 48'000 * 2);

    // The light, a disc 18.5 pixels in radius, goes round a ring of 118 pixels, half a turn every 15 frames.
    for (const int index : {0, 4, 15, 19, 100}) {
        const VideoFrame& frame = clip.frames[static_cast<std::size_t>(index)];
        double count = 0;
        double sumX = 0;
        double sumY = 0;
        for (int y = 0; y < 360; ++y)
            for (int x = 0; x < 640; ++x)
                if (sample(frame, 0, x, y) > 190) {
                    ++count;
                    sumX += x;
                    sumY += y;
                }
        const double angle = std::numbers::pi * index / 15;
        EXPECT_NEAR(count, std::numbers::pi * 18.5 * 18.5, 60) << index;
        EXPECT_NEAR(sumX / count, 320 + 118 * std::cos(angle), 0.5) << index;
        EXPECT_NEAR(sumY / count, 180 + 118 * std::sin(angle), 0.5) << index;
    }
    // Colours in BT.709 video range: Y = 16 + 219 (0.2126 R + 0.7152 G + 0.0722 B) and so on.
    const struct {
        std::size_t frame;
        int x, y;
        std::array<int, 3> code;
        const char* what;
    } places[] = {
        {0, 438, 180, {206, 90, 147}, "the light (1, 0.86, 0.55)"},
        {0, 320, 298, {97, 139, 98}, "the ring (0.16, 0.42, 0.46)"},
        {0, 424, 124, {122, 129, 111}, "the tail half a radian behind: light 0.232 over ring"},
        {0, 0, 0, {50, 136, 113}, "night, 0.4 of the way to teal"},
        {59, 0, 0, {71, 137, 101}, "night, 0.8 of the way to teal"},
    };
    for (const auto& [frame, x, y, code, what] : places)
        for (std::size_t plane = 0; plane < 3; ++plane) {
            const int shift = plane == 0 ? 0 : 1;
            EXPECT_NEAR(sample(clip.frames[frame], plane, x >> shift, y >> shift), code[plane], 2) << what << plane;
        }

    // Each half turn a click on the light's side: a quarter of its 1200 Hz wave later, 0.5 e^(-90/4800), 95 to 5.
    const auto at = [&](double seconds, int channel) {
        return clip.samples[static_cast<std::size_t>(std::llround(seconds * 48'000) * 2 + channel)];
    };
    for (const int halfTurn : {1, 2, 7}) {
        const double side = halfTurn % 2 == 0 ? 1 : -1;
        const double time = halfTurn * 0.5 + 1.0 / 4800;
        EXPECT_NEAR(at(time, 1) - at(time, 0), side * 0.9 * 0.4907, 0.002) << halfTurn;
    }
    // Between clicks a tone of 0.12, at second t of 220 + 30 t Hz: so many upward zero crossings in 0.15 s.
    for (const double start : {0.3, 3.8}) {
        int crossings = 0;
        double energy = 0;
        for (double time = start; time < start + 0.15; time += 1.0 / 48'000) {
            crossings += at(time, 0) <= 0 && at(time + 1.0 / 48'000, 0) > 0;
            energy += at(time, 0) * at(time, 0);
            ASSERT_NEAR(at(time, 0), at(time, 1), 1e-6);
        }
        EXPECT_NEAR(crossings, 0.15 * (220 + 30 * (start + 0.075)), 1) << start;
        EXPECT_NEAR(energy / 7200, 0.12 * 0.12 / 2, 0.0003) << start;
    }
}

TEST(Demo, NobodysFilesAreReplaced) {
    const TemporaryFolder folder;
    writeFile(folder / "demo.mov", "a recording");
    writeFile(folder / "demo-2-retimed.mov", "another");
    RecordedDemo demo;
    ASSERT_EQ(demo.run(folder.path()), 0) << demo.error.str();
    EXPECT_EQ(folder.names(),
              (std::vector<std::string>{"demo-2-retimed.mov", "demo-3-retimed.mov", "demo-3.mov", "demo.mov"}));
    EXPECT_EQ(readFile(folder / "demo.mov") + readFile(folder / "demo-2-retimed.mov"), "a recordinganother");
}

TEST(Demo, AFailureIsOneSentence) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "in the way");
    std::ostringstream output;
    std::ostringstream error;
    EXPECT_EQ(runDemo(folder / "file/demo", ScriptedBackend({}), {output, error}), 1);
    EXPECT_EQ(error.str(), "The demo failed: " + (folder / "file/demo").string() + ": Not a directory (error 20)\n");
}

} // namespace
} // namespace flowtide::test
