// On real files: the sound is the resampling formula, nothing is shifted, and picture and sound stay together.
#include "core/curve_engine.h"
#include "media/export/export_engine.h"
#include "media/ffmpeg/ffmpeg_backend.h"
#include "media/sound/audio_decoding.h"
#include "tests/support/clip_maker.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace flowtide::test {
namespace {

class ExportAudioTest : public testing::Test {
protected:
    ImportedClip make(const char* name, const ClipRecipe& recipe) {
        makeClip(*backend_, folder_ / name, recipe);
        return ImportedClip::load(*backend_, folder_ / name);
    }

    ImportedClip exported(const ImportedClip& clip, const SpeedKeyframes& keyframes,
                          std::optional<SourceRange> range = std::nullopt) {
        ExportRequest request;
        request.clip = clip;
        request.keyframes = keyframes;
        request.sourceRange = range;
        request.outputURL = folder_.path() / ("out" + clip.url.extension().string());
        ExportEngine(*backend_, [](std::string_view) {}).run(request, [](double) {});
        return ImportedClip::load(*backend_, request.outputURL);
    }

    AudioData soundOf(const ImportedClip& clip) { return AudioDecoding::readAll(*backend_, clip, {0, clip.duration}); }

    std::unique_ptr<MediaBackend> backend_ = makeFFmpegBackend();
    TemporaryFolder folder_;
};

SpeedKeyframes ramp(double end) {
    return {{Uuid::random(), 0, 1}, {Uuid::random(), end / 2, 0.4}, {Uuid::random(), end, 2.5}};
}

/// The resampling formula on a clip's decoded sound, in doubles.
std::vector<double> formula(const AudioData& source, const TimeMap& map) {
    std::vector<double> out;
    const auto total = std::llround(map.outputDuration() * source.sampleRate);
    for (std::int64_t n = 0; n < total; ++n) {
        const double p =
            map.sourceTime(OutputSeconds{static_cast<double>(n) / source.sampleRate}).value * source.sampleRate;
        const auto k = static_cast<std::int64_t>(std::floor(p));
        const double fraction = p - std::floor(p);
        for (std::int64_t c = 0; c < source.channels; ++c) {
            const auto at = [&](std::int64_t frame) {
                return static_cast<double>(source.samples[static_cast<std::size_t>(
                    std::min(frame, source.frameCount() - 1) * source.channels + c)]);
            };
            out.push_back(k < source.frameCount() ? (1 - fraction) * at(k) + fraction * at(k + 1) : 0);
        }
    }
    return out;
}

double meanSquare(const std::vector<double>& wanted, const std::vector<float>& got, std::ptrdiff_t lag = 0) {
    double sum = 0;
    const auto size = static_cast<std::ptrdiff_t>(std::min(wanted.size(), got.size()));
    for (std::ptrdiff_t i = 20'000; i < size - 20'000; ++i) {
        const double difference =
            wanted[static_cast<std::size_t>(i)] - static_cast<double>(got[static_cast<std::size_t>(i + lag)]);
        sum += difference * difference;
    }
    return sum / static_cast<double>(size - 40'000);
}

TEST_F(ExportAudioTest, LinearPCMIsTheFormulaToItsRounding) {
    for (const int depth : {16, 24, 32}) {
        ClipRecipe recipe;
        recipe.frameCount = 100;
        recipe.sampleRate = 44'100;
        recipe.audioFormat = linearPCM;
        recipe.audioBitDepth = depth;
        recipe.sound = chirp;
        const ImportedClip clip = make("in.mov", recipe);
        EXPECT_EQ(clip.audio->bitDepth, depth);
        const AudioData source = soundOf(clip);
        EXPECT_EQ(source.frameCount(), 4 * 44'100);
        for (const auto& range : {std::optional<SourceRange>{}, std::optional<SourceRange>{{1.234, 3.21}}}) {
            const TimeMap map =
                CurveEngine::buildTimeMap(ramp(4), clip.duration, range, CurveEngine::exportTimeMapSteps, 0.5);
            const std::vector<double> wanted = formula(source, map);
            const AudioData got = soundOf(exported(clip, ramp(4), range));
            ASSERT_EQ(got.samples.size(), wanted.size());
            const double rounding = depth == 32 ? 1e-7 : 0.5 / std::pow(2.0, depth - 1) + 1e-7;
            double worst = 0;
            for (std::size_t i = 0; i < wanted.size(); ++i)
                worst = std::max(worst, std::abs(wanted[i] - static_cast<double>(got.samples[i])));
            EXPECT_LE(worst, rounding) << depth;
        }
    }
}

TEST_F(ExportAudioTest, AACLosesOnlyWhatItsEncoderLosesAndIsNotShifted) {
    ClipRecipe recipe;
    recipe.frameCount = 150;
    recipe.sampleRate = 48'000;
    recipe.sound = chirp;
    const ImportedClip clip = make("in.mp4", recipe);
    const AudioData source = soundOf(clip);
    EXPECT_EQ(source.frameCount(), 6 * 48'000);
    const TimeMap map =
        CurveEngine::buildTimeMap(ramp(6), clip.duration, std::nullopt, CurveEngine::exportTimeMapSteps, 0.5);
    const std::vector<double> wanted = formula(source, map);
    const ImportedClip output = exported(clip, ramp(6));
    const AudioData got = soundOf(output);
    ASSERT_EQ(got.samples.size(), wanted.size());

    // The same samples through the same encoder, without an export around it.
    ClipRecipe plain = recipe;
    plain.frameCount = std::llround(map.outputDuration() * 25);
    plain.audioBitRate = std::llround(*clip.audio->estimatedDataRate);
    plain.sound = [&](double seconds, int channel) {
        const auto index =
            2 * static_cast<std::size_t>(std::llround(seconds * 48'000)) + static_cast<std::size_t>(channel);
        return index < wanted.size() ? wanted[index] : 0.0;
    };
    const AudioData reference = soundOf(make("reference.mp4", plain));
    const double own = meanSquare(wanted, got.samples);
    EXPECT_LE(own, 1.05 * meanSquare(wanted, reference.samples));
    for (const std::ptrdiff_t lag : {-4, -2, 2, 4})
        EXPECT_GT(meanSquare(wanted, got.samples, lag), 1.5 * own) << lag;
}

TEST_F(ExportAudioTest, FlashAndClickStayTogether) {
    // Every half second the picture turns bright (number 4095) for a while, and a click sounds as it does.
    const struct {
        const char* name;
        FourCC format;
    } cases[] = {{"in.mov", linearPCM}, {"in.mp4", aac}};
    for (const auto& [name, format] : cases) {
        ClipRecipe recipe;
        recipe.frameDuration = {1, 50};
        recipe.frameCount = 400;
        recipe.frameNumber = [](std::int64_t i) { return i % 25 >= 12 && i % 25 < 20 ? 4095 : 0; };
        recipe.sampleRate = 48'000;
        recipe.audioFormat = format;
        recipe.sound = [](double seconds, int) {
            const double since = std::fmod(seconds + 0.5 - 12 * 0.02, 0.5);
            return since < 0.002 ? 0.8 * std::sin(2 * 3.14159265 * 3000 * since) : 0.0;
        };
        const ImportedClip clip = make(name, recipe);
        for (const auto& range : {std::optional<SourceRange>{}, std::optional<SourceRange>{{1.11, 7.03}}}) {
            const ImportedClip output = exported(clip, ramp(8), range);
            const AudioData sound = soundOf(output);
            std::vector<double> flashes;
            const auto numbers = frameNumbers(*backend_, output);
            for (std::size_t i = 0; i < numbers.size(); ++i)
                if (numbers[i] == 4095 && (i == 0 || numbers[i - 1] != 4095))
                    flashes.push_back(static_cast<double>(i) * 0.02);
            std::vector<double> clicks;
            for (std::int64_t n = 0; n < sound.frameCount(); ++n) {
                const double time = static_cast<double>(n) / sound.sampleRate;
                const bool loud = std::abs(sound.samples[static_cast<std::size_t>(2 * n)]) > 0.2F;
                if (loud && (clicks.empty() || time - clicks.back() > 0.1)) clicks.push_back(time);
            }
            EXPECT_GE(flashes.size(), 11U);
            ASSERT_EQ(flashes.size(), clicks.size()) << name;
            for (std::size_t i = 0; i < flashes.size(); ++i)
                EXPECT_NEAR(flashes[i], clicks[i], 0.0201) << name;
        }
    }
}

} // namespace
} // namespace flowtide::test
