// Fills and compares histograms of colour.
#include "media/tracking/subject_appearance.h"

#include "core/clamp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace flowtide::tracking {

namespace {

constexpr int samplesAcross = 24;
constexpr double rimLoss = 0.9;        ///< how much less the box's rim counts than its middle
constexpr double greyChroma = 0.05;    ///< chroma up to which a pixel has no hue, of the codes' range
constexpr double colorfulChroma = 0.1; ///< above it, where its hue counts as much as its light
constexpr double hueShare = 0.5;

/// What a pair of chroma codes says.
struct Hue {
    std::uint8_t first; ///< the bin before its place on the circle
    float rest;         ///< how much of it is the next bin's
    float share;        ///< of the pixel that goes to the hues
};

constexpr int chromaSteps = 64; ///< of the table, along each axis

using HueTable = std::array<Hue, static_cast<std::size_t>(chromaSteps* chromaSteps)>;

HueTable makeHueTable(bool fullRange) {
    HueTable table{};
    const double range = fullRange ? 255 : 224;
    for (int i = 0; i < chromaSteps * chromaSteps; ++i) {
        const auto code = [&](int step) { return ((step + 0.5) * 256 / chromaSteps - 128) / range; };
        const double cb = code(i % chromaSteps);
        const double cr = code(i / chromaSteps);
        const double turns = std::atan2(cr, cb) / (2 * std::numbers::pi);
        const double place =
            std::min((turns - std::floor(turns)) * SubjectAppearance::hueCount, SubjectAppearance::hueCount - 1e-6);
        table[static_cast<std::size_t>(i)] = {
            static_cast<std::uint8_t>(place), static_cast<float>(place - std::floor(place)),
            static_cast<float>(hueShare * clamped((std::hypot(cb, cr) - greyChroma) / colorfulChroma, 0, 1))};
    }
    return table;
}

const HueTable& hueTable(bool fullRange) {
    static const HueTable limited = makeHueTable(false);
    static const HueTable full = makeHueTable(true);
    return fullRange ? full : limited;
}

/// The grey bins beside a luma code, the first one's number and the second one's share.
struct Grey {
    std::uint8_t first;
    float rest;
};
using GreyTable = std::array<Grey, 256>;

GreyTable makeGreyTable(bool fullRange) {
    const double black = fullRange ? 0 : 16;
    const double white = fullRange ? 255 : 235;
    GreyTable table{};
    for (std::size_t code = 0; code < table.size(); ++code) {
        const double light =
            clamped((static_cast<double>(code) - black) / (white - black), 0, 1) * (SubjectAppearance::greyCount - 1);
        const double first = std::min(std::floor(light), SubjectAppearance::greyCount - 2.0);
        table[code] = {static_cast<std::uint8_t>(first), static_cast<float>(light - first)};
    }
    return table;
}

const GreyTable& greyTable(bool fullRange) {
    static const GreyTable limited = makeGreyTable(false);
    static const GreyTable full = makeGreyTable(true);
    return fullRange ? full : limited;
}

using Weights = std::array<float, static_cast<std::size_t>(samplesAcross* samplesAcross)>;

const Weights& sampleWeights() {
    static const Weights weights = [] {
        Weights result{};
        for (int i = 0; i < samplesAcross * samplesAcross; ++i) {
            const double across = 2 * (i % samplesAcross + 0.5) / samplesAcross - 1;
            const int row = i / samplesAcross;
            const double along = 2 * (row + 0.5) / samplesAcross - 1;
            result[static_cast<std::size_t>(i)] =
                static_cast<float>(std::max(0.0, 1 - rimLoss * (across * across + along * along)));
        }
        return result;
    }();
    return weights;
}

/// The samples' columns or rows in a plane that is `count` long.
using Places = std::array<int, static_cast<std::size_t>(samplesAcross)>;
Places placesIn(int count, double start, double length) {
    Places places{};
    for (int i = 0; i < samplesAcross; ++i) {
        const double place = (start + (i + 0.5) / samplesAcross * length) * count;
        places[static_cast<std::size_t>(i)] = static_cast<int>(clamped(place, 0, count - 1));
    }
    return places;
}

/// The level that has about one pixel for each sample.
std::size_t levelFor(const SubjectPicture& picture, const SubjectBox& box) {
    const double spacing = std::sqrt(box.width * picture.width() * box.height * picture.height()) / samplesAcross;
    std::size_t level = 0;
    while (level + 1 < SubjectPicture::levelCount && spacing > 1.5 * static_cast<double>(1 << level))
        ++level;
    return level;
}

} // namespace

SubjectAppearance SubjectAppearance::colors(const SubjectPicture& picture, const SubjectBox& box) {
    const HueTable& hues = hueTable(picture.fullRange);
    const GreyTable& greys = greyTable(picture.fullRange);
    const Weights& weights = sampleWeights();
    const BytePlane& luma = picture.luma[levelFor(picture, box)];
    const BytePlane& blue = picture.chroma[0];
    const BytePlane& red = picture.chroma[1];
    const Places columns = placesIn(luma.width, box.x, box.width);
    const Places rows = placesIn(luma.height, box.y, box.height);
    const Places chromaColumns = placesIn(blue.width, box.x, box.width);
    const Places chromaRows = placesIn(blue.height, box.y, box.height);

    std::array<float, hueCount + 1> hueSums{}; // the last one is the first again
    std::array<float, greyCount> greySums{};
    std::size_t sample = 0;
    for (std::size_t j = 0; j < samplesAcross; ++j) {
        const std::uint8_t* lumaRow = luma.data + rows[j] * luma.stride;
        const std::uint8_t* blueRow = blue.data + chromaRows[j] * blue.stride;
        const std::uint8_t* redRow = red.data + chromaRows[j] * red.stride;
        for (std::size_t i = 0; i < samplesAcross; ++i) {
            const float weight = weights[sample++];
            const int cb = blueRow[chromaColumns[i]] * chromaSteps / 256;
            const int cr = redRow[chromaColumns[i]] * chromaSteps / 256;
            const Hue& hue = hues[static_cast<std::size_t>(cr * chromaSteps + cb)];
            const Grey& grey = greys[lumaRow[columns[i]]];
            // Each part goes to the two bins beside it, the nearer one getting more.
            const float colored = weight * hue.share;
            const float second = colored * hue.rest;
            hueSums[hue.first] += colored - second;
            hueSums[hue.first + 1] += second;
            const float light = weight - colored;
            const float brighter = light * grey.rest;
            greySums[grey.first] += light - brighter;
            greySums[grey.first + 1] += brighter;
        }
    }
    hueSums[0] += hueSums[hueCount];

    SubjectAppearance result;
    result.bins.assign(hueSums.begin(), hueSums.end() - 1);
    result.bins.insert(result.bins.end(), greySums.begin(), greySums.end());
    double sum = 0;
    for (const double bin : result.bins)
        sum += bin;
    for (double& bin : result.bins)
        bin /= sum;
    return result;
}

double SubjectAppearance::distance(const SubjectAppearance& a, const SubjectAppearance& b) {
    if (a.bins.size() != binCount || b.bins.size() != binCount) return 1;
    double shared = 0;
    for (std::size_t i = 0; i < binCount; ++i)
        shared += std::sqrt(a.bins[i] * b.bins[i]);
    return std::max(0.0, 1 - shared);
}

SubjectAppearance SubjectAppearance::towards(const SubjectAppearance& other, double share) const {
    SubjectAppearance result = *this;
    for (std::size_t i = 0; i < result.bins.size(); ++i)
        result.bins[i] += share * (other.bins[i] - bins[i]);
    return result;
}

} // namespace flowtide::tracking
