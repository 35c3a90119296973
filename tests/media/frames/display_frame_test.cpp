// Display pixels beside a double-precision computation from the standards' own numbers.
#include "media/frames/display_frame.h"
#include "tests/support/zoom_chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace flowtide::test {
namespace {

using Triple = std::array<double, 3>;

double pqToLight(double value) {
    const double power = std::pow(value, 1 / 78.84375);
    return 10000 * std::pow(std::max(power - 0.8359375, 0.0) / (18.8515625 - 18.6875 * power), 1 / 0.1593017578125);
}
double lightToPQ(double light) {
    const double power = std::pow(light / 10000, 0.1593017578125);
    return std::pow((0.8359375 + 18.8515625 * power) / (1 + 18.6875 * power), 78.84375);
}

/// BT.2390-10, 5.4.1, black at zero, its knee moved down: light in cd/m² for a display whose white is 203.
double eetf(double light, double peak) {
    const double e1 = std::min(lightToPQ(light) / lightToPQ(peak), 1.0);
    const double maxLum = lightToPQ(203) / lightToPQ(peak);
    const double ks = std::min(std::max(2 * maxLum - 1, lightToPQ(36) / lightToPQ(peak)), 1.5 * maxLum - 0.5);
    if (e1 <= ks) return std::min(light, peak);
    const double t = (e1 - ks) / (1 - ks);
    const double t2 = t * t;
    const double t3 = t2 * t;
    const double p = (2 * t3 - 3 * t2 + 1) * ks + (t3 - 2 * t2 + t) * (1 - ks) + (3 * t2 - 2 * t3) * maxLum;
    return pqToLight(p * lightToPQ(peak));
}

struct Kind {
    const char* name;
    ColorProperties tags;
    double kr, kb;
    enum { asIs, wideSdr, pq, hlg } process;
};
const Kind kinds[] = {
    {"BT.709", {"bt709", "bt709", "bt709"}, 0.2126, 0.0722, Kind::asIs},
    {"BT.601, 525 lines", {"smpte170m", "smpte170m", "smpte170m"}, 0.299, 0.114, Kind::asIs},
    {"BT.601, 625 lines", {"bt470bg", "smpte170m", "bt470bg"}, 0.299, 0.114, Kind::asIs},
    {"ST 240", {"smpte240m", "smpte240m", "smpte240m"}, 0.212, 0.087, Kind::asIs},
    {"FCC", {"bt709", "bt709", "fcc"}, 0.30, 0.11, Kind::asIs},
    {"BT.2020", {"bt2020", "bt2020-10", "bt2020nc"}, 0.2627, 0.0593, Kind::wideSdr},
    {"P3", {"smpte432", "bt709", "bt709"}, 0.2126, 0.0722, Kind::wideSdr},
    {"PQ", {"bt2020", "smpte2084", "bt2020nc"}, 0.2627, 0.0593, Kind::pq},
    {"HLG", {"bt2020", "arib-std-b67", "bt2020nc"}, 0.2627, 0.0593, Kind::hlg},
};

/// Linear light to BT.709's primaries: the inverse of BT.2087's matrix, and P3 with D65's likewise.
Triple toBT709(const Kind& kind, const Triple& c) {
    static constexpr double from2020[3][3] = {
        {1.660491, -0.587641, -0.072850}, {-0.124550, 1.132900, -0.008349}, {-0.018151, -0.100579, 1.118730}};
    static constexpr double fromP3[3][3] = {
        {1.224940, -0.224940, 0}, {-0.042057, 1.042057, 0}, {-0.019638, -0.078636, 1.098274}};
    const auto& m = std::string(kind.name) == "P3" ? fromP3 : from2020;
    Triple result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = m[i][0] * c[0] + m[i][1] * c[1] + m[i][2] * c[2];
    return result;
}

/// `codes` in units of the layout's depth.
Triple reference(const Kind& kind, PixelLayout layout, const Triple& codes, double peak = 1000) {
    const double unit = 1 << (layout.bitDepth - 8);
    const double full = (1 << layout.bitDepth) - 1;
    const double y = layout.fullRange ? codes[0] / full : (codes[0] / unit - 16) / 219;
    const auto chroma = [&](double code) { return (code - 128 * unit) / (layout.fullRange ? full : 224 * unit); };
    const double red = y + 2 * (1 - kind.kr) * chroma(codes[2]);
    const double blue = y + 2 * (1 - kind.kb) * chroma(codes[1]);
    Triple rgb{red, (y - kind.kr * red - kind.kb * blue) / (1 - kind.kr - kind.kb), blue};
    for (double& value : rgb)
        value = std::clamp(value, 0.0, 1.0);
    if (kind.process != Kind::asIs) {
        for (double& value : rgb)
            value = kind.process == Kind::pq        ? pqToLight(value)
                    : kind.process == Kind::wideSdr ? 203 * std::pow(value, 2.4)
                    : value <= 0.5                  ? value * value / 3
                                                    : (std::exp((value - 0.55991073) / 0.17883277) + 0.28466892) / 12;
        double gain = 1;
        if (kind.process == Kind::hlg) gain = 1000 * std::pow(0.2627 * rgb[0] + 0.6780 * rgb[1] + 0.0593 * rgb[2], 0.2);
        if (const double largest = gain * *std::max_element(rgb.begin(), rgb.end());
            kind.process != Kind::wideSdr && largest > 0)
            gain *= eetf(largest, peak) / largest;
        rgb = toBT709(kind, rgb);
        for (double& value : rgb)
            value = std::pow(std::clamp(gain * value / 203, 0.0, 1.0), 1 / 2.4);
    }
    return {255 * rgb[0], 255 * rgb[1], 255 * rgb[2]};
}

/// A frame from a function of plane, column and row; rows `padding` bytes longer than they need be.
template <typename Code>
VideoFrame makeFrame(PixelLayout layout, int width, int height, Code code, std::size_t padding = 0) {
    auto bytes = std::make_shared<std::vector<std::uint8_t>>();
    std::array<std::size_t, 3> offsets{};
    for (std::size_t plane = 0; plane < 3; ++plane) {
        bytes->resize(bytes->size() + padding); // planes begin in the middle of a vector
        offsets[plane] = bytes->size();
        for (int row = 0; row < planeHeight(layout, height, plane); ++row) {
            for (int column = 0; column < planeWidth(layout, width, plane); ++column) {
                const auto value = static_cast<unsigned>(code(plane, column, row));
                bytes->push_back(static_cast<std::uint8_t>(value & 0xFF));
                if (layout.bytesPerSample() == 2) bytes->push_back(static_cast<std::uint8_t>(value >> 8));
            }
            bytes->resize(bytes->size() + padding, 0xAB);
        }
    }
    VideoFrame frame;
    frame.layout = layout;
    frame.width = width;
    frame.height = height;
    for (std::size_t plane = 0; plane < 3; ++plane)
        frame.planes[plane] = {bytes->data() + offsets[plane],
                               static_cast<std::ptrdiff_t>(planeRowBytes(layout, width, plane) + padding)};
    frame.owner = bytes;
    return frame;
}

VideoFrame flatFrame(PixelLayout layout, int width, int height, std::array<int, 3> codes) {
    return makeFrame(layout, width, height, [&](std::size_t plane, int, int) { return codes[plane]; });
}

std::uint32_t pixelAt(const DisplayFrame& frame, int x, int y) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, reinterpret_cast<const std::uint8_t*>(frame.pixels) + y * frame.stride + 4 * x, sizeof pixel);
    return pixel;
}
double channel(std::uint32_t pixel, std::size_t number) {
    return pixel >> (16 - 8 * number) & 0xFF;
}

/// The largest difference from the reference in any channel; 1000 where a pixel is not opaque.
double distance(std::uint32_t pixel, const Triple& expected) {
    double largest = pixel >> 24 == 0xFF ? 0 : 1000;
    for (std::size_t i = 0; i < 3; ++i)
        largest = std::max(largest, std::abs(channel(pixel, i) - expected[i]));
    return largest;
}

std::vector<std::uint32_t> pixelsOf(const DisplayFrame& frame) {
    std::vector<std::uint32_t> result;
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x)
            result.push_back(pixelAt(frame, x, y));
    return result;
}

/// Chroma where luma sample x stands, linear between its samples; clamped at the edges.
double chromaAt(const VideoFrame& frame, std::size_t plane, int x, int y) {
    const int shiftX = frame.layout.horizontalChromaShift();
    const int shiftY = frame.layout.verticalChromaShift();
    const double column = shiftX > 0 ? x / 2.0 : x;          // sited with the left luma sample
    const double row = shiftY > 0 ? (y + 0.5) / 2 - 0.5 : y; // midway between two rows
    const auto sample = [&](double c, double r) {
        const int lastColumn = planeWidth(frame.layout, frame.width, plane) - 1;
        const int lastRow = planeHeight(frame.layout, frame.height, plane) - 1;
        return sampleOf(frame, plane, std::clamp(static_cast<int>(c), 0, lastColumn),
                        std::clamp(static_cast<int>(r), 0, lastRow)) *
               (1 << (frame.layout.bitDepth - 8));
    };
    const double left = std::floor(column);
    const double top = std::floor(row);
    const double toRight = column - left;
    const double down = row - top;
    return (1 - down) * ((1 - toRight) * sample(left, top) + toRight * sample(left + 1, top)) +
           down * ((1 - toRight) * sample(left, top + 1) + toRight * sample(left + 1, top + 1));
}

PictureColor colorOf(const Kind& kind) {
    return {kind.tags, {}, {}};
}

constexpr ChromaSubsampling subsamplings[] = {ChromaSubsampling::yuv420, ChromaSubsampling::yuv422,
                                              ChromaSubsampling::yuv444};

TEST(DisplayFrame, EveryColourIsWithinTwoCodesOfTheStandards) {
    constexpr int width = 45;
    constexpr int height = 31;
    DisplayConverter converter; // one for all: what it keeps must follow the description
    for (const Kind& kind : kinds)
        for (const ChromaSubsampling chroma : subsamplings)
            for (const int depth : {8, 10})
                for (const bool fullRange : {false, true}) {
                    const PixelLayout layout{chroma, depth, fullRange};
                    std::mt19937 random(3);
                    // Beside a zero of a display primary its code rises without limit, so that there the rounding of
                    // interpolated chroma shows: where it is interpolated, colours stay inside the gamut.
                    const bool anything = chroma == ChromaSubsampling::yuv444 || kind.process == Kind::asIs;
                    const VideoFrame frame = makeFrame(layout, width, height, [&](std::size_t plane, int, int) {
                        const auto low = static_cast<unsigned>(anything ? 0 : plane == 0 ? 90 : 118) << (depth - 8);
                        const auto high = static_cast<unsigned>(anything ? 256 : plane == 0 ? 220 : 139) << (depth - 8);
                        return low + random() % (high - low);
                    });
                    const DisplayFrame shown = converter.convert(frame, colorOf(kind), {}, {width, height});
                    double worst = 0;
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x) {
                            const Triple codes{sampleOf(frame, 0, x, y) * (1 << (depth - 8)), chromaAt(frame, 1, x, y),
                                               chromaAt(frame, 2, x, y)};
                            worst = std::max(worst, distance(pixelAt(shown, x, y), reference(kind, layout, codes)));
                        }
                    EXPECT_LT(worst, 2) << kind.name << ", " << depth << " bits, " << (fullRange ? "full" : "video")
                                        << " range, subsampling " << static_cast<int>(chroma);
                }
}

TEST(DisplayFrame, GreyStaysGreyAndRampsRise) {
    for (const Kind& kind : kinds)
        for (const bool fullRange : {false, true}) {
            const PixelLayout layout{ChromaSubsampling::yuv420, 10, fullRange};
            const VideoFrame ramp = makeFrame(
                layout, 1024, 2, [](std::size_t plane, int column, int) { return plane == 0 ? column : 512; });
            DisplayConverter converter;
            const DisplayFrame shown = converter.convert(ramp, colorOf(kind), {}, {1024, 2});
            std::uint32_t before = 0xff000000;
            for (int x = 0; x < 1024; ++x) {
                const std::uint32_t pixel = pixelAt(shown, x, 1);
                ASSERT_EQ(pixel & 0xFF, pixel >> 8 & 0xFF) << kind.name << " " << x;
                ASSERT_EQ(pixel & 0xFF, pixel >> 16 & 0xFF) << kind.name << " " << x;
                ASSERT_GE(pixel, before) << kind.name << " " << x;
                before = pixel;
            }
            EXPECT_EQ(pixelAt(shown, fullRange ? 0 : 64, 0), 0xff000000U) << kind.name;
            EXPECT_EQ(before, 0xffffffffU) << kind.name;
        }
}

TEST(DisplayFrame, HdrMeetsItsAnchors) {
    const PixelLayout layout{ChromaSubsampling::yuv444, 10, true};
    DisplayConverter converter;
    const auto codeFor = [&](const PictureColor& color, double value) {
        const VideoFrame frame = flatFrame(layout, 3, 3, {static_cast<int>(std::lround(1023 * value)), 512, 512});
        return channel(pixelAt(converter.convert(frame, color, {}, {3, 3}), 1, 1), 1);
    };
    const Kind& pq = kinds[7];
    const Kind& hlg = kinds[8];
    EXPECT_NEAR(codeFor(colorOf(hlg), 0.75), 0.84 * 255, 3); // reference white
    EXPECT_NEAR(codeFor(colorOf(pq), lightToPQ(203)), 0.84 * 255, 3);
    EXPECT_NEAR(codeFor(colorOf(pq), lightToPQ(1000)), 255, 1);
    EXPECT_NEAR(codeFor(colorOf(pq), lightToPQ(35)), 255 * std::pow(35.0 / 203, 1 / 2.4), 1); // below the knee

    const struct {
        double mastering;
        unsigned content;
        double peak;
    } peaks[] = {{0, 0, 1000},      {4000, 0, 4000},  {0, 600, 600},       {4000, 600, 600},       {1000, 4000, 1000},
                 {10000, 0, 10000}, {100, 0, 203.00}, {20000, 0, 10000.0}, {20000, 20000, 10000.0}};
    for (const auto& [mastering, content, peak] : peaks) {
        PictureColor color = colorOf(pq);
        color.masteringDisplay.emplace().maximumLuminance = mastering;
        color.contentLightLevel = ContentLightLevel{content, 0};
        for (int code = 300; code < 1024; code += 37)
            EXPECT_NEAR(codeFor(color, code / 1023.0),
                        reference(pq, layout, {static_cast<double>(code), 512, 512}, peak)[1], 1.2)
                << mastering << " " << content << " code " << code;
    }
}

TEST(DisplayFrame, TurnsAndFlips) {
    constexpr int width = 37;
    constexpr int height = 53; // more than one strip, the last one not full
    const VideoFrame frame =
        makeFrame({ChromaSubsampling::yuv444, 8, true}, width, height, [](std::size_t plane, int column, int row) {
            return plane == 0 ? (column * 7 + row * 29) % 256 : 128;
        });
    DisplayConverter converter;
    const PictureColor color = colorOf(kinds[0]);
    for (const auto& [a, b, c, d] : {std::array{1., 0., 0., 1.},
                                     {-1., 0., 0., 1.},
                                     {1., 0., 0., -1.},
                                     {-1., 0., 0., -1.},
                                     {0., 1., 1., 0.},
                                     {0., 1., -1., 0.},
                                     {0., -1., 1., 0.},
                                     {0., -1., -1., 0.}}) {
        const bool transposes = a == 0;
        const OutputSize size{transposes ? height : width, transposes ? width : height};
        const DisplayFrame shown = converter.convert(frame, color, {a, b, c, d, 1e4, -17}, size);
        ASSERT_EQ(shown.width, size.width);
        ASSERT_EQ(shown.height, size.height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                // The transform of the sample's centre, brought back on screen.
                const double left = a * (x + 0.5) + c * (y + 0.5);
                const double top = b * (x + 0.5) + d * (y + 0.5);
                const auto column = static_cast<int>(a + c < 0 ? static_cast<double>(size.width) + left : left);
                const auto row = static_cast<int>(b + d < 0 ? static_cast<double>(size.height) + top : top);
                ASSERT_EQ(pixelAt(shown, column, row) & 0xFF, static_cast<unsigned>(x * 7 + y * 29) % 256)
                    << a << b << c << d << " at " << x << ", " << y;
            }
    }
    const auto upright = pixelsOf(converter.convert(frame, color, {}, {width, height}));
    for (const AffineTransform& other : {AffineTransform{0.7, 0.7, -0.7, 0.7},
                                         {2, 0, 0, 2},
                                         {1, 0.5, 0, 1},
                                         {0, 1, 0.5, 0},
                                         {0.5, 1, 1, 0},
                                         {0, 0, 0, 0}})
        EXPECT_EQ(pixelsOf(converter.convert(frame, color, other, {width, height})), upright);
}

/// Where a row of one channel crosses a level, nearest to `expected`; far away when it doesn't.
double crossing(const DisplayFrame& frame, std::size_t number, int row, double level, double expected) {
    double best = -1e9;
    for (int x = 0; x + 1 < frame.width; ++x) {
        const double a = channel(pixelAt(frame, x, row), number) - level;
        const double b = channel(pixelAt(frame, x + 1, row), number) - level;
        if ((a < 0) == (b < 0)) continue;
        const double at = x + 0.5 + a / (a - b);
        if (std::abs(at - expected) < std::abs(best - expected)) best = at;
    }
    return best;
}

TEST(DisplayFrame, ScalingMovesNoEdge) {
    constexpr int width = 641;
    constexpr int height = 361;
    ZoomChart chart;
    chart.softness = 3;
    DisplayConverter converter;
    for (const ChromaSubsampling chroma : subsamplings)
        for (const std::size_t plane : {std::size_t{0}, std::size_t{2}}) {
            // The chart in one plane alone: grey edges from luma, red ones from Cr.
            const PixelLayout layout{chroma, 8, true};
            const VideoFrame edges = chart.frame(layout, width, height);
            VideoFrame frame = flatFrame(layout, width, height, {128, 128, 128});
            frame.planes[plane] = edges.planes[plane];
            const double middle = (chart.dark + chart.bright) / 2;
            const double level = plane == 0 ? middle : 128 + 1.5748 * (middle - 128);
            for (const auto& [toWidth, toHeight] : {std::pair{width, height}, {427, 240}, {213, 121}, {900, 507}}) {
                const DisplayFrame shown = converter.convert(frame, colorOf(kinds[0]), {}, {toWidth, toHeight});
                const double scale = static_cast<double>(toWidth) / width;
                double worst = 0;
                for (int row = 5; row < toHeight - 5; row += 20)
                    for (int number = 0; number < 4; ++number) {
                        const double expected = scale * chart.edge(number, (row + 0.5) * height / toHeight);
                        if (expected < 8 || expected > toWidth - 8) continue;
                        worst = std::max(worst, std::abs(crossing(shown, 0, row, level, expected) - expected));
                    }
                EXPECT_LT(worst, plane == 0 ? 0.05 : 0.1)
                    << "plane " << plane << ", subsampling " << static_cast<int>(chroma) << " to " << toWidth;
            }
        }
}

TEST(DisplayFrame, FineStripesBecomeGreyAndNotCoarseOnes) {
    for (const bool upright : {true, false}) {
        const VideoFrame stripes =
            makeFrame({ChromaSubsampling::yuv420, 8, true}, 640, 640, [&](std::size_t plane, int column, int row) {
                return plane > 0 ? 128 : (upright ? column : row) % 2 ? 228 : 28;
            });
        DisplayConverter converter;
        const DisplayFrame shown = converter.convert(stripes, colorOf(kinds[0]), {}, {277, 277});
        for (int i = 4; i < 273; ++i)
            ASSERT_NEAR(channel(pixelAt(shown, i, 273 - i), 0), 128, 3) << i;
    }
}

TEST(DisplayFrame, AnySizeAndAnyMemory) {
    DisplayConverter converter;
    const Kind& kind = kinds[8];
    for (const ChromaSubsampling chroma : subsamplings)
        for (const int depth : {8, 10})
            for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {2, 2}, {3, 2}, {31, 17}, {258, 3}})
                for (const auto& [toWidth, toHeight] : {std::pair{1, 1}, {5, 3}, {33, 40}, {300, 2}}) {
                    const PixelLayout layout{chroma, depth, false};
                    const std::array<int, 3> codes{130 << (depth - 8), 120 << (depth - 8), 135 << (depth - 8)};
                    const VideoFrame frame = flatFrame(layout, width, height, codes);
                    const Triple expected =
                        reference(kind, layout, {double(codes[0]), double(codes[1]), double(codes[2])});
                    for (const AffineTransform& turn : {AffineTransform{}, AffineTransform{0, 1, -1, 0}})
                        for (const std::uint32_t pixel :
                             pixelsOf(converter.convert(frame, colorOf(kind), turn, {toWidth, toHeight})))
                            ASSERT_LT(distance(pixel, expected), 2)
                                << width << "x" << height << " to " << toWidth << "x" << toHeight;
                }

    for (const int depth : {8, 10}) {
        const PixelLayout layout{ChromaSubsampling::yuv420, depth, false};
        const auto code = [&](std::size_t plane, int column, int row) {
            return (static_cast<int>(plane) * 31 + column * 5 + row * 3) % (1 << depth);
        };
        const OutputSize size{50, 30};
        const auto packed = pixelsOf(converter.convert(makeFrame(layout, 61, 43, code), colorOf(kinds[0]), {}, size));
        for (const std::size_t padding : {2U, 6U, 64U, 130U})
            EXPECT_EQ(
                pixelsOf(converter.convert(makeFrame(layout, 61, 43, code, padding), colorOf(kinds[0]), {}, size)),
                packed)
                << padding;
    }
}

TEST(DisplayFrame, FramesLiveOnAndConvertersForgetNothingWrongly) {
    const PixelLayout layout{ChromaSubsampling::yuv420, 8, false};
    const VideoFrame dark = flatFrame(layout, 8, 8, {40, 128, 128});
    const VideoFrame bright = flatFrame(layout, 8, 8, {150, 128, 128});
    PictureColor color = colorOf(kinds[7]);
    DisplayFrame first;
    std::vector<std::uint32_t> before;
    {
        DisplayConverter converter;
        EXPECT_FALSE(first);
        first = converter.convert(dark, color, {}, {8, 8});
        before = pixelsOf(first);
        const DisplayFrame second = converter.convert(bright, color, {}, {8, 8});
        EXPECT_NE(first.pixels, second.pixels);
        EXPECT_EQ(first.stride % 64, 0);
        // The same codes under another light level, range, or pair of tags are other pixels.
        color.contentLightLevel = ContentLightLevel{4000, 400};
        EXPECT_NE(pixelsOf(converter.convert(bright, color, {}, {8, 8})), pixelsOf(second));
        const void* memory = converter.convert(bright, color, {}, {8, 8}).pixels;
        EXPECT_EQ(converter.convert(bright, color, {}, {8, 8}).pixels, memory); // came back, and serves again
    }
    EXPECT_TRUE(first);
    EXPECT_EQ(pixelsOf(first), before);
}

TEST(DisplayFrame, FastKernelsGiveTheSameBytesAsPlainOnes) {
    std::mt19937 random(5);
    for (const Kind& kind : kinds) {
        const PixelLayout layout{ChromaSubsampling::yuv444, 10, false};
        const DisplayColor withFast(colorOf(kind), layout);
        const DisplayColor withPlain(colorOf(kind), layout, InstructionSet::baseline);
        for (const std::size_t count : {1U, 7U, 8U, 255U, 256U, 257U, 1000U}) {
            std::vector<std::uint16_t> samples(3 * count);
            for (auto& sample : samples)
                sample = static_cast<std::uint16_t>(random());
            std::vector<std::uint32_t> a(count + 1, 77), b(count + 1, 77);
            withFast.convertRow(&samples[0], &samples[count], &samples[2 * count], count, a.data());
            withPlain.convertRow(&samples[0], &samples[count], &samples[2 * count], count, b.data());
            ASSERT_EQ(a, b) << kind.name << " " << count;
            ASSERT_EQ(a.back(), 77U); // nothing beyond the row
        }
    }
}

TEST(DisplayFrame, SizesAndColoursOfClips) {
    const struct {
        OutputSize picture, box, fitted;
    } sizes[] = {
        {{1920, 1080}, {1280, 720}, {1280, 720}}, {{1920, 1080}, {1000, 1000}, {1000, 563}},
        {{1080, 1920}, {1280, 720}, {405, 720}},  {{640, 360}, {1280, 1280}, {1280, 720}},
        {{10'000, 1}, {100, 100}, {100, 1}},      {{1, 10'000}, {100, 100}, {1, 100}},
        {{1920, 1080}, {0, 0}, {1, 1}},           {{853, 481}, {853, 481}, {853, 481}},
    };
    for (const auto& [picture, box, fitted] : sizes)
        EXPECT_EQ(fittedSize(picture, box), fitted) << picture.width << " in " << box.width;

    ImportedClip clip;
    clip.video.encodedWidth = 1920;
    clip.video.encodedHeight = 1080;
    EXPECT_EQ(pictureColor(clip).tags, (ColorProperties{"bt709", "bt709", "bt709"}));
    clip.video.encodedHeight = 480;
    clip.video.colorProperties = ColorProperties{{}, "arib-std-b67", {}};
    clip.metadata.masteringDisplay.emplace().maximumLuminance = 600;
    clip.metadata.contentLightLevel = ContentLightLevel{500, 100};
    const PictureColor color = pictureColor(clip);
    EXPECT_EQ(color.tags.transferFunction, "arib-std-b67");
    EXPECT_TRUE(color.tags.complete());
    EXPECT_EQ(color.masteringDisplay, clip.metadata.masteringDisplay);
    EXPECT_EQ(color.contentLightLevel, clip.metadata.contentLightLevel);
}

} // namespace
} // namespace flowtide::test
