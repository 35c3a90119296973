// Colour matrices, transfer curves and tone mapping.
#include "media/frames/display_color.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string_view>

namespace flowtide {

namespace {

using display::OctaveScale;

constexpr double referenceWhite = 203;   // cd/m², BT.2408
constexpr double lowestKnee = 36;        // cd/m²: where the knee comes to be for a peak of 1000
constexpr double hlgPeak = 1000;         // cd/m², BT.2100
constexpr double hlgSystemGamma = 1.2;   // BT.2100, at that peak
constexpr double usualPQPeak = 1000;     // cd/m², what most masters are graded on
constexpr double highestPQLight = 10000; // cd/m², ST 2084
constexpr double displayGamma = 2.4;     // BT.1886
constexpr double largestCode = 255;

// Half a step of 1/256 is a fifth of a display code at most.
constexpr int mantissaBits = 8;
constexpr OctaveScale systemScale{0x1p-24F, 1, mantissaBits}; // darker scenes are black on any display
constexpr OctaveScale toneScale{0x1p-4F, 64, mantissaBits};   // below: under every knee; above: beyond PQ
constexpr OctaveScale encodeScale{0x1p-22F, 1, mantissaBits}; // below: less than half a code

enum class Transfer { sdr, pq, hlg };

Transfer transferOf(const ColorProperties& tags) {
    if (tags.transferFunction == "smpte2084") return Transfer::pq;
    if (tags.transferFunction == "arib-std-b67") return Transfer::hlg;
    return Transfer::sdr;
}

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>; // rows

/// CIE 1931 x, y of red, green and blue.
using Primaries = std::array<std::array<double, 2>, 3>;
constexpr Primaries bt709{{{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}}};
constexpr Primaries bt2020{{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}}};
constexpr Primaries p3{{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}}};
constexpr std::array<double, 2> whiteD65{0.3127, 0.3290};

/// The primaries of standard definition are so near to BT.709's that they count as them.
const Primaries& primariesOf(const ColorProperties& tags) {
    if (tags.primaries == "bt2020") return bt2020;
    if (tags.primaries == "smpte431" || tags.primaries == "smpte432") return p3; // white is white on either
    return bt709;
}

/// KR and KB of a YCbCr matrix.
std::array<double, 2> lumaWeights(const ColorProperties& tags) {
    const std::string_view name = tags.matrix ? std::string_view(*tags.matrix) : std::string_view();
    if (name == "smpte170m" || name == "bt470bg") return {0.299, 0.114};
    if (name.starts_with("bt2020")) return {0.2627, 0.0593};
    if (name == "smpte240m") return {0.212, 0.087};
    if (name == "fcc") return {0.30, 0.11};
    return {0.2126, 0.0722};
}

Vector product(const Matrix& m, const Vector& v) {
    Vector result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    return result;
}

Matrix inverse(const Matrix& m) {
    Matrix result{};
    double determinant = 0;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            const std::size_t a = (i + 1) % 3, b = (i + 2) % 3, c = (j + 1) % 3, d = (j + 2) % 3;
            result[j][i] = m[a][c] * m[b][d] - m[a][d] * m[b][c]; // cyclic indices carry the sign
            if (i == 0) determinant += m[0][j] * result[j][0];
        }
    for (Vector& row : result)
        for (double& value : row)
            value /= determinant;
    return result;
}

Vector xyzOf(const std::array<double, 2>& xy) {
    return {xy[0] / xy[1], 1, (1 - xy[0] - xy[1]) / xy[1]};
}

/// Linear RGB to CIE XYZ; white has Y = 1.
Matrix toXYZ(const Primaries& primaries) {
    Matrix columns{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t row = 0; row < 3; ++row)
            columns[row][i] = xyzOf(primaries[i])[row];
    const Vector amounts = product(inverse(columns), xyzOf(whiteD65));
    for (Vector& row : columns)
        for (std::size_t i = 0; i < 3; ++i)
            row[i] *= amounts[i];
    return columns;
}

// The constants of ST 2084.
constexpr double pqM1 = 2610.0 / 16384;
constexpr double pqM2 = 2523.0 / 4096 * 128;
constexpr double pqC1 = 3424.0 / 4096;
constexpr double pqC2 = 2413.0 / 4096 * 32;
constexpr double pqC3 = 2392.0 / 4096 * 32;

/// cd/m² of a PQ value 0...1.
double pqLight(double value) {
    const double root = std::pow(value, 1 / pqM2);
    return highestPQLight * std::pow(std::max(root - pqC1, 0.0) / (pqC2 - pqC3 * root), 1 / pqM1);
}

double pqValue(double light) {
    const double power = std::pow(light / highestPQLight, pqM1);
    return std::pow((pqC1 + pqC2 * power) / (1 + pqC3 * power), pqM2);
}

/// Scene light 0...1 of an HLG value 0...1.
double hlgSceneLight(double value) {
    constexpr double a = 0.17883277;
    constexpr double b = 0.28466892;
    constexpr double c = 0.55991073;
    return value <= 0.5 ? value * value / 3 : (std::exp((value - c) / a) + b) / 12;
}

/// The EETF of BT.2390 from `peak` to reference white, both in cd/m², black to black; DisplayConverter says why its
/// knee is lower.
double toneMapped(double light, double peak) {
    const double range = pqValue(peak);
    const double target = pqValue(referenceWhite) / range;
    const double recommended = 1.5 * target - 0.5; // with a higher knee the curve would overshoot
    const double knee = std::min(recommended, std::max(2 * target - 1, pqValue(lowestKnee) / range));
    const double value = std::min(pqValue(light) / range, 1.0);
    if (value <= knee) return std::min(light, peak); // a peak of reference white has nothing above its knee
    const double t = (value - knee) / (1 - knee);
    const double curve = (2 * t * t * t - 3 * t * t + 1) * knee + (t * t * t - 2 * t * t + t) * (1 - knee) +
                         (-2 * t * t * t + 3 * t * t) * target;
    return pqLight(curve * range);
}

/// The brightest light that a PQ picture may hold, cd/m².
double pqPeak(const PictureColor& color) {
    const double mastering = color.masteringDisplay ? color.masteringDisplay->maximumLuminance : 0;
    const double content = color.contentLightLevel ? color.contentLightLevel->maximumContent : 0;
    double peak = usualPQPeak;
    if (mastering > 0 && content > 0)
        peak = std::min(mastering, content);
    else if (mastering > 0 || content > 0)
        peak = std::max(mastering, content);
    return std::clamp(peak, referenceWhite, highestPQLight);
}

/// The values of a function in the middle of a table's steps.
template <typename Value>
std::vector<Value> tabulated(OctaveScale scale, const std::function<Value(double)>& function) {
    const int steps = 1 << scale.mantissaBits;
    const int lowest = std::ilogb(scale.lowest);
    const int octaves = std::ilogb(scale.highest) - lowest;
    std::vector<Value> table;
    for (int place = 0; place <= octaves * steps; ++place)
        table.push_back(function(std::ldexp(1 + (place % steps + 0.5) / steps, lowest + place / steps)));
    return table;
}

display::YCbCrMatrix matrixFor(const ColorProperties& tags, PixelLayout layout, double scale) {
    const int extraBits = 16 - layout.bitDepth;
    const double largest = ((1 << layout.bitDepth) - 1) << extraBits;
    const double lumaRange = layout.fullRange ? largest : 219 << 8;
    const double chromaRange = layout.fullRange ? largest : 224 << 8;
    const double black = layout.fullRange ? 0 : 16 << 8;
    const auto [kr, kb] = lumaWeights(tags);
    const double kg = 1 - kr - kb;
    const double chroma = scale / chromaRange;
    display::YCbCrMatrix matrix;
    matrix.luma = static_cast<float>(scale / lumaRange);
    matrix.offset = static_cast<float>(-black * scale / lumaRange);
    matrix.redFromCr = static_cast<float>(2 * (1 - kr) * chroma);
    matrix.greenFromCb = static_cast<float>(-2 * (1 - kb) * kb / kg * chroma);
    matrix.greenFromCr = static_cast<float>(-2 * (1 - kr) * kr / kg * chroma);
    matrix.blueFromCb = static_cast<float>(2 * (1 - kb) * chroma);
    return matrix;
}

} // namespace

PictureColor pictureColor(const ImportedClip& clip) {
    return {completedColor(clip.videoColorProperties().value_or(ColorProperties{}),
                           {clip.encodedWidth(), clip.encodedHeight()}),
            clip.metadata.masteringDisplay, clip.metadata.contentLightLevel};
}

DisplayColor::Tables DisplayColor::tablesFor(const PictureColor& color) {
    const Transfer transfer = transferOf(color.tags);
    Tables tables;
    const auto decoded = [transfer](int step) {
        const double value = static_cast<double>(step) / display::decodeSteps;
        return transfer == Transfer::pq    ? pqLight(value) / referenceWhite
               : transfer == Transfer::hlg ? hlgSceneLight(value)
                                           : std::pow(value, displayGamma);
    };
    for (int step = 0; step < display::decodeSteps; ++step) {
        tables.decode.push_back(static_cast<float>(decoded(step)));
        tables.decode.push_back(static_cast<float>(decoded(step + 1) - decoded(step)));
    }
    if (transfer == Transfer::hlg)
        tables.systemGain = tabulated<float>(systemScale, [](double luminance) {
            return static_cast<float>(hlgPeak / referenceWhite * std::pow(luminance, hlgSystemGamma - 1));
        });
    if (transfer != Transfer::sdr) {
        const double peak = transfer == Transfer::hlg ? hlgPeak : pqPeak(color);
        tables.toneCurve = tabulated<float>(toneScale, [peak](double light) {
            return static_cast<float>(toneMapped(light * referenceWhite, peak) / referenceWhite);
        });
    }
    tables.encode = tabulated<std::uint8_t>(encodeScale, [](double light) {
        return static_cast<std::uint8_t>(std::lround(std::min(std::pow(light, 1 / displayGamma), 1.0) * largestCode));
    });

    const Matrix source = toXYZ(primariesOf(color.tags));
    const Matrix display = inverse(toXYZ(bt709));
    const auto share = [&](std::size_t displayPrimary, std::size_t sourcePrimary) {
        double sum = 0;
        for (std::size_t i = 0; i < 3; ++i)
            sum += display[displayPrimary][i] * source[i][sourcePrimary];
        return static_cast<float>(sum);
    };
    display::LinearLight& light = tables.light;
    light.decode = tables.decode.data();
    light.systemGain = tables.systemGain.empty() ? nullptr : tables.systemGain.data();
    light.toneCurve = tables.toneCurve.empty() ? nullptr : tables.toneCurve.data();
    light.encode = tables.encode.data();
    light.systemScale = systemScale;
    light.toneScale = toneScale;
    light.encodeScale = encodeScale;
    light.redLuminance = static_cast<float>(source[1][0]);
    light.greenLuminance = static_cast<float>(source[1][1]);
    light.blueLuminance = static_cast<float>(source[1][2]);
    light.redFromGreen = share(0, 1);
    light.redFromBlue = share(0, 2);
    light.greenFromRed = share(1, 0);
    light.greenFromBlue = share(1, 2);
    light.blueFromRed = share(2, 0);
    light.blueFromGreen = share(2, 1);
    return tables;
}

DisplayColor::DisplayColor(const PictureColor& color, PixelLayout layout, InstructionSet instructions)
    : kernels_(display::rowKernels(instructions)) {
    const bool direct = transferOf(color.tags) == Transfer::sdr && primariesOf(color.tags) == bt709;
    if (!direct) tables_ = tablesFor(color);
    matrix_ = matrixFor(color.tags, layout, direct ? largestCode : display::decodeUnits);
}

void DisplayColor::convertRow(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr,
                              std::size_t count, std::uint32_t* pixels) const {
    if (tables_)
        kernels_.linear(y, cb, cr, count, matrix_, tables_->light, pixels);
    else
        kernels_.direct(y, cb, cr, count, matrix_, pixels);
}

namespace display {

RowKernels rowKernels(InstructionSet set) {
#if defined(FLOWTIDE_HAS_AVX2_KERNELS)
    if (set == InstructionSet::avx2) return avx2::kernels();
#endif
    static_cast<void>(set);
    return baseline::kernels();
}

} // namespace display

} // namespace flowtide
