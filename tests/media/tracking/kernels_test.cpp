// The kernels against direct computation, and one set of instructions against the other.
#include "media/tracking/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

namespace flowtide::tracking {
namespace {

constexpr auto cells = static_cast<std::size_t>(gridSide * gridSide);

std::vector<float> randomValues(std::size_t count, unsigned seed, float highest = 1) {
    std::mt19937 random(seed);
    std::vector<float> values(count);
    for (float& value : values)
        value = highest * static_cast<float>(random() % 4096) / 4096;
    return values;
}

std::vector<const Kernels*> sets() {
    std::vector<const Kernels*> result{&kernelsFor(InstructionSet::baseline)};
    if (bestInstructionSet() != InstructionSet::baseline) result.push_back(&kernelsFor(bestInstructionSet()));
    return result;
}

/// Everything that a filter goes through, on random values.
struct Results {
    std::vector<float> samples, features, spectrum, numerator, energy, answer, response, other;
};
Results resultsOf(const Kernels& kernels) {
    const auto side = static_cast<std::size_t>(patchSide(gridSide));
    Results r;
    std::vector<std::uint8_t> pixels(200 * 90);
    std::mt19937 random(7);
    for (auto& pixel : pixels)
        pixel = static_cast<std::uint8_t>(random());
    r.samples.resize(side * side);
    kernels.sample({pixels.data(), 200, 200, 90}, {-20.3, 11.7, 1.37, 0.91, static_cast<int>(side)}, r.samples.data());
    r.features.resize(cells * channelCount);
    kernels.features(r.samples.data(), gridSide, r.features.data());
    r.spectrum.resize(spectrumSize);
    kernels.transform(r.features.data(), randomValues(cells, 2).data(), twiddles(), r.spectrum.data());
    r.numerator = randomValues(spectrumSize, 3);
    r.energy = randomValues(spectrumPlaces, 4);
    kernels.learn(r.spectrum.data(), randomValues(spectrumPlaces, 5).data(), 0.3F, r.numerator.data(), r.energy.data());
    r.answer.resize(2 * spectrumPlaces);
    kernels.respond(r.numerator.data(), r.energy.data(), 0.1F, r.spectrum.data(), r.answer.data());
    r.response.resize(cells);
    r.other.resize(cells);
    kernels.invert(r.answer.data(), randomValues(2 * spectrumPlaces, 6).data(), twiddles(), r.response.data(),
                   r.other.data());
    return r;
}

TEST(TrackingKernelsTest, EverySetOfInstructionsGivesTheSameBytes) {
    if (sets().size() < 2) GTEST_SKIP() << "this machine has one set only";
    const Results plain = resultsOf(*sets()[0]);
    const Results wide = resultsOf(*sets()[1]);
    EXPECT_EQ(plain.samples, wide.samples);
    EXPECT_EQ(plain.features, wide.features);
    EXPECT_EQ(plain.spectrum, wide.spectrum);
    EXPECT_EQ(plain.numerator, wide.numerator);
    EXPECT_EQ(plain.energy, wide.energy);
    EXPECT_EQ(plain.answer, wide.answer);
    EXPECT_EQ(plain.response, wide.response);
    EXPECT_EQ(plain.other, wide.other);
}

TEST(TrackingKernelsTest, SamplesAreBilinearAndTheEdgeGoesOn) {
    // On a plane that rises evenly, interpolation gives the place itself.
    std::vector<std::uint8_t> pixels(40 * 30);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            pixels[static_cast<std::size_t>(y * 40 + x)] = static_cast<std::uint8_t>(3 * x + 4 * y);
    const SampleGrid grid{-6.3, -2.1, 0.9, 0.7, 60};
    std::vector<float> samples(60 * 60);
    sets().back()->sample({pixels.data(), 40, 40, 30}, grid, samples.data());
    for (int j = 0; j < 60; ++j)
        for (int i = 0; i < 60; ++i) {
            const double x = std::clamp(grid.left + i * grid.stepX - 0.5, 0.0, 39.0);
            const double y = std::clamp(grid.top + j * grid.stepY - 0.5, 0.0, 29.0);
            ASSERT_NEAR(samples[static_cast<std::size_t>(j * 60 + i)], 3 * x + 4 * y, 1e-3) << i << ", " << j;
        }
}

TEST(TrackingKernelsTest, FeaturesTellDirectionAndForgetContrast) {
    constexpr int count = 8;
    constexpr int side = patchSide(count);
    const auto featuresOf = [&](double angle, float contrast, float base) {
        std::vector<float> patch(side * side);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                patch[static_cast<std::size_t>(y * side + x)] =
                    base + contrast * static_cast<float>(std::cos(angle) * x + std::sin(angle) * y);
        std::vector<float> features(count * count * channelCount);
        sets().back()->features(patch.data(), count, features.data());
        return features;
    };
    for (int bin = 0; bin < 18; ++bin) {
        const double angle = bin * std::numbers::pi / 9;
        const auto features = featuresOf(angle, 6, 100);
        const float* middle = features.data() + (4 * count + 4) * channelCount;
        EXPECT_EQ(std::max_element(middle, middle + 18) - middle, bin);
        EXPECT_EQ(std::max_element(middle + 18, middle + 27) - middle - 18, bin % 9);
        EXPECT_EQ(middle[31], 0);
        // One direction alone is 1/2 of what its block has, cut to 0.2 in each of four blocks, then halved.
        EXPECT_NEAR(middle[bin], 0.4, 1e-5);
        EXPECT_NEAR(middle[27], 0.2357 * 0.2, 1e-5);
        const auto strong = featuresOf(angle, 24, 30);
        for (std::size_t i = 0; i < features.size(); ++i)
            ASSERT_NEAR(features[i], strong[i], 1e-4) << bin;
    }
    const auto flat = featuresOf(0, 0.01F, 90);
    EXPECT_LT(*std::max_element(flat.begin(), flat.end()), 0.05F) << "noise is no texture";
}

TEST(TrackingKernelsTest, FeaturesOfAMirroredPatchAreMirrored) {
    constexpr int count = 8;
    constexpr int side = patchSide(count);
    const auto patch = randomValues(side * side, 8, 255);
    std::vector<float> across(patch.size());
    std::vector<float> down(patch.size());
    for (std::size_t y = 0; y < side; ++y)
        for (std::size_t x = 0; x < side; ++x) {
            across[y * side + side - 1 - x] = patch[y * side + x];
            down[(side - 1 - y) * side + x] = patch[y * side + x];
        }
    const auto featuresOf = [&](const std::vector<float>& pixels) {
        std::vector<float> features(count * count * channelCount);
        sets().back()->features(pixels.data(), count, features.data());
        return features;
    };
    const auto straight = featuresOf(patch);
    const auto mirroredAcross = featuresOf(across);
    const auto mirroredDown = featuresOf(down);
    for (int y = 0; y < count; ++y)
        for (int x = 0; x < count; ++x) {
            const auto at = [&](const std::vector<float>& features, int column, int row) {
                return features.data() + (row * count + column) * channelCount;
            };
            const float* here = at(straight, x, y);
            const float* left = at(mirroredAcross, count - 1 - x, y);
            const float* below = at(mirroredDown, x, count - 1 - y);
            for (int bin = 0; bin < 18; ++bin) {
                ASSERT_NEAR(here[bin], left[(27 - bin) % 18], 1e-4) << bin;
                ASSERT_NEAR(here[bin], below[(18 - bin) % 18], 1e-4) << bin;
            }
            for (int block = 0; block < 4; ++block) {
                ASSERT_NEAR(here[27 + block], left[27 + (block ^ 1)], 1e-4) << x << ", " << y;
                ASSERT_NEAR(here[27 + block], below[27 + (block ^ 2)], 1e-4) << x << ", " << y;
            }
        }
}

TEST(TrackingKernelsTest, TransformsAreFouriers) {
    const auto features = randomValues(cells * channelCount, 1);
    const auto window = randomValues(cells, 2);
    std::vector<float> spectrum(spectrumSize);
    sets().back()->transform(features.data(), window.data(), twiddles(), spectrum.data());
    for (const int channel : {0, 5, 16, 31})
        for (const auto& [row, column] : {std::pair{0, 0}, {0, 16}, {3, 1}, {31, 7}, {16, 16}, {20, 15}}) {
            std::complex<double> wanted;
            for (int y = 0; y < gridSide; ++y)
                for (int x = 0; x < gridSide; ++x) {
                    const auto place = static_cast<std::size_t>(y * gridSide + x);
                    wanted += static_cast<double>(features[place * channelCount + static_cast<std::size_t>(channel)] *
                                                  window[place]) *
                              std::polar(1.0 / gridSide, -2 * std::numbers::pi * (row * y + column * x) / gridSide);
                }
            const std::size_t at = static_cast<std::size_t>(row * spectrumColumns + column) * 2 * channelCount +
                                   static_cast<std::size_t>(channel);
            EXPECT_NEAR(spectrum[at], wanted.real(), 1e-4) << channel << ": " << row << ", " << column;
            EXPECT_NEAR(spectrum[at + channelCount], wanted.imag(), 1e-4) << channel << ": " << row << ", " << column;
        }
}

TEST(TrackingKernelsTest, AFilterAnswersWhatItLearntWithItsLabelWhereItIs) {
    const auto features = randomValues(cells * channelCount, 1);
    // The same, two cells to the right and three down.
    std::vector<float> moved(features.size());
    for (std::size_t y = 0; y < gridSide; ++y)
        for (std::size_t x = 0; x < gridSide; ++x)
            std::copy_n(features.begin() + static_cast<std::ptrdiff_t>((y * gridSide + x) * channelCount), channelCount,
                        moved.begin() + static_cast<std::ptrdiff_t>(
                                            ((y + 3) % gridSide * gridSide + (x + 2) % gridSide) * channelCount));
    const std::vector<float> window(cells, 1);
    std::vector<float> label; // of a bell
    for (int y = 0; y < gridSide; ++y)
        for (int x = 0; x < spectrumColumns; ++x)
            label.push_back(std::exp(-0.02F * static_cast<float>(std::pow(std::min(y, gridSide - y), 2) + x * x)));
    const Kernels& kernels = *sets().back();
    std::vector<float> spectrum(spectrumSize);
    std::vector<float> numerator(spectrumSize);
    std::vector<float> energy(spectrumPlaces);
    const auto answerTo = [&](const std::vector<float>& shown, float damping) {
        kernels.transform(shown.data(), window.data(), twiddles(), spectrum.data());
        std::vector<float> answer(2 * spectrumPlaces);
        kernels.respond(numerator.data(), energy.data(), damping, spectrum.data(), answer.data());
        return answer;
    };
    kernels.transform(features.data(), window.data(), twiddles(), spectrum.data());
    kernels.learn(spectrum.data(), label.data(), 1, numerator.data(), energy.data());
    // Learning the same again changes nothing; half of nothing halves both.
    kernels.learn(spectrum.data(), label.data(), 0.4F, numerator.data(), energy.data());
    const auto same = answerTo(features, 0);
    for (std::size_t i = 0; i < label.size(); ++i) {
        ASSERT_NEAR(same[2 * i], label[i], 1e-3);
        ASSERT_NEAR(same[2 * i + 1], 0, 1e-3);
    }
    const auto damped = answerTo(features, energy[40]);
    EXPECT_NEAR(damped[80], label[40] / 2, 1e-4);
    EXPECT_NEAR(
        energy[40],
        [&] {
            double sum = 0;
            for (std::size_t i = 40 * 2 * channelCount; i < 41 * 2 * channelCount; ++i)
                sum += static_cast<double>(spectrum[i]) * static_cast<double>(spectrum[i]);
            return sum;
        }(),
        1e-3);

    std::vector<float> at(cells);
    std::vector<float> shifted(cells);
    kernels.invert(same.data(), answerTo(moved, 0).data(), twiddles(), at.data(), shifted.data());
    EXPECT_EQ(std::max_element(at.begin(), at.end()) - at.begin(), 0);
    EXPECT_EQ(std::max_element(shifted.begin(), shifted.end()) - shifted.begin(), 3 * gridSide + 2);
    // The value at zero is the mean of the whole spectrum, whose right half mirrors the left one.
    double sum = 0;
    for (int y = 0; y < gridSide; ++y)
        for (int x = 0; x < gridSide; ++x)
            sum +=
                static_cast<double>(label[static_cast<std::size_t>(y * spectrumColumns + std::min(x, gridSide - x))]);
    EXPECT_NEAR(at[0], sum / static_cast<double>(cells), 1e-4);
    EXPECT_NEAR(shifted[3 * gridSide + 2], at[0], 1e-4);
}

} // namespace
} // namespace flowtide::tracking
