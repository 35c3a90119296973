// The one-dimensional filter: 17 sizes, a transform of 17 values for each feature.
#include "media/tracking/scale_filter.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace flowtide::tracking {

namespace {

constexpr int scaleCount = 17;
constexpr int middle = scaleCount / 2;
constexpr double step = 1.03;    ///< from size to size
constexpr double labelWidth = 1; ///< standard deviation, in sizes
constexpr double damping = 0.01;
constexpr int cells = 6; ///< along a patch's side
constexpr std::size_t frequencies = scaleCount / 2 + 1;
constexpr auto featureCount = static_cast<std::size_t>(cells * cells * channelCount);

struct Tables {
    std::array<double, scaleCount> factor;
    std::array<float, scaleCount> window;
    std::array<double, scaleCount> cosine;
    std::array<double, scaleCount> sine;
    std::array<double, frequencies> label; ///< the spectrum of a bell at 0, which is real
};

const Tables& tables() {
    static const Tables result = [] {
        Tables t{};
        for (std::size_t i = 0; i < scaleCount; ++i) {
            const double offset = static_cast<double>(i) - middle;
            const double angle = 2 * std::numbers::pi * static_cast<double>(i) / scaleCount;
            t.factor[i] = std::pow(step, offset);
            t.window[i] = static_cast<float>(0.5 + 0.5 * std::cos(2 * std::numbers::pi * offset / (scaleCount + 1)));
            t.cosine[i] = std::cos(angle);
            t.sine[i] = std::sin(angle);
        }
        for (std::size_t k = 0; k < frequencies; ++k)
            for (std::size_t i = 0; i < scaleCount; ++i) {
                const double offset = static_cast<double>(i) - middle;
                t.label[k] += std::exp(-0.5 * offset * offset / (labelWidth * labelWidth)) *
                              std::cos(2 * std::numbers::pi * static_cast<double>(k) * offset / scaleCount);
            }
        return t;
    }();
    return result;
}

} // namespace

ScaleFilter::ScaleFilter()
    : spectrum_(2 * frequencies * featureCount)
    , numerator_(spectrum_.size())
    , energy_(frequencies) {}

void ScaleFilter::transform(const Kernels& kernels, const SubjectPicture& picture, const PixelBox& box) {
    const Tables& t = tables();
    std::array<float, static_cast<std::size_t>(patchSide(cells) * patchSide(cells))> patch;
    std::array<float, featureCount> features;
    std::fill(spectrum_.begin(), spectrum_.end(), 0.0F);
    for (std::size_t i = 0; i < scaleCount; ++i) {
        const double width = box.width * t.factor[i];
        const double height = box.height * t.factor[i];
        sampleLuma(kernels, picture, box.centerX - width / 2, box.centerY - height / 2, width, height, cells,
                   patch.data());
        kernels.features(patch.data(), cells, features.data());
        for (std::size_t k = 0; k < frequencies; ++k) {
            const std::size_t turn = k * i % scaleCount;
            const float real = t.window[i] * static_cast<float>(t.cosine[turn]);
            const float imaginary = -t.window[i] * static_cast<float>(t.sine[turn]);
            float* reals = spectrum_.data() + 2 * k * featureCount;
            float* imaginaries = reals + featureCount;
            for (std::size_t f = 0; f < featureCount; ++f) {
                reals[f] += real * features[f];
                imaginaries[f] += imaginary * features[f];
            }
        }
    }
}

void ScaleFilter::learn(const Kernels& kernels, const SubjectPicture& picture, const PixelBox& box, double rate) {
    transform(kernels, picture, box);
    for (std::size_t k = 0; k < frequencies; ++k) {
        const std::size_t begin = 2 * k * featureCount;
        const auto gain = static_cast<float>(rate * tables().label[k]);
        const auto kept = static_cast<float>(1 - rate);
        double energy = 0;
        for (std::size_t f = begin; f < begin + 2 * featureCount; ++f) {
            numerator_[f] = kept * numerator_[f] + gain * spectrum_[f];
            energy += static_cast<double>(spectrum_[f]) * spectrum_[f];
        }
        energy_[k] += rate * (energy - energy_[k]);
    }
}

double ScaleFilter::factor(const Kernels& kernels, const SubjectPicture& picture, const PixelBox& box) {
    transform(kernels, picture, box);
    std::array<double, frequencies> real{};
    std::array<double, frequencies> imaginary{};
    for (std::size_t k = 0; k < frequencies; ++k) {
        const float* filter = numerator_.data() + 2 * k * featureCount;
        const float* given = spectrum_.data() + 2 * k * featureCount;
        double sumReal = 0;
        double sumImaginary = 0;
        for (std::size_t f = 0; f < featureCount; ++f) {
            sumReal += filter[f] * given[f] + filter[f + featureCount] * given[f + featureCount];
            sumImaginary += filter[f] * given[f + featureCount] - filter[f + featureCount] * given[f];
        }
        real[k] = sumReal / (energy_[k] + damping * featureCount);
        imaginary[k] = sumImaginary / (energy_[k] + damping * featureCount);
    }
    // What stood at the middle size when it was learnt stands `shift` sizes up when the object has grown.
    std::array<double, scaleCount> answers{};
    std::size_t best = 0;
    for (std::size_t i = 0; i < scaleCount; ++i) {
        const std::size_t shift = (i + scaleCount - middle) % scaleCount;
        answers[i] = real[0];
        for (std::size_t k = 1; k < frequencies; ++k) {
            const std::size_t turn = k * shift % scaleCount;
            answers[i] += 2 * (real[k] * tables().cosine[turn] - imaginary[k] * tables().sine[turn]);
        }
        if (answers[i] > answers[best]) best = i;
    }
    double offset = static_cast<double>(best) - middle;
    if (best > 0 && best + 1 < scaleCount) {
        const double curvature = answers[best - 1] - 2 * answers[best] + answers[best + 1];
        if (curvature < 0) offset += 0.5 * (answers[best - 1] - answers[best + 1]) / curvature;
    }
    return std::pow(step, offset);
}

} // namespace flowtide::tracking
