// The row kernels. Loops over short arrays that compilers make vectors of, apart from those that look into tables.
// Nothing of the standard library that is not a plain type: the linker would share it with code for other machines.
#include "media/frames/display_kernels.h"

#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace flowtide::display::FLOWTIDE_KERNEL_SET {

namespace {

// Short enough for all of a stretch's arrays to stay in the first-level cache, a multiple of every vector.
constexpr std::size_t stretch = 256;

inline float clamped(float value, float low, float high) {
    value = value > low ? value : low;
    return value < high ? value : high;
}

/// The nearest whole number from 0 to `highest`.
inline std::uint32_t rounded(float value, std::int32_t highest) {
    const auto whole = static_cast<std::int32_t>(value + 0.5F); // what truncation does below 0 is of no account
    const std::int32_t atLeastNone = whole > 0 ? whole : 0;
    return static_cast<std::uint32_t>(atLeastNone < highest ? atLeastNone : highest);
}

inline std::uint32_t bitsOf(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// Looking up is most of the work, and where there are instructions for it, compilers don't use them. They look up eight
// places at a time: what stands behind the last one, from a longer stretch before, must be in the table too.
constexpr std::size_t atATime = 8;

void endPlaces(std::uint32_t* places, std::size_t count) {
    for (std::size_t i = count; i % atATime != 0; ++i)
        places[i] = 0;
}

void lookUp(const float* table, const std::uint32_t* places, std::size_t count, float* values) {
#if defined(__AVX2__)
    for (std::size_t i = 0; i < count; i += atATime) {
        const __m256i place = _mm256_load_si256(reinterpret_cast<const __m256i*>(places + i));
        _mm256_store_ps(values + i, _mm256_i32gather_ps(table, place, sizeof(float)));
    }
#else
    for (std::size_t i = 0; i < count; ++i)
        values[i] = table[places[i]];
#endif
}

#if defined(__AVX2__)
inline __m256 pairsAt(const float* table, __m128i places) {
    // The plain form of the instruction leaves GCC to warn of what it overwrites.
    const __m256d every = _mm256_castsi256_pd(_mm256_set1_epi64x(-1));
    return _mm256_castpd_ps(_mm256_mask_i32gather_pd(_mm256_setzero_pd(), reinterpret_cast<const double*>(table),
                                                     places, every, 2 * sizeof(float)));
}
#endif

/// value + rest × slope of a table of such pairs.
void interpolate(const float* table, const std::uint32_t* places, const float* rests, std::size_t count,
                 float* values) {
#if defined(__AVX2__)
    // A pair at a time: half as many loads.
    for (std::size_t i = 0; i < count; i += atATime) {
        const __m256i place = _mm256_load_si256(reinterpret_cast<const __m256i*>(places + i));
        const __m256i ordered = _mm256_permute4x64_epi64(place, 0xD8); // 0 1 4 5, 2 3 6 7
        const __m256 a = pairsAt(table, _mm256_castsi256_si128(ordered));
        const __m256 b = pairsAt(table, _mm256_extracti128_si256(ordered, 1));
        const __m256 value = _mm256_shuffle_ps(a, b, 0x88); // the even ones
        const __m256 slope = _mm256_shuffle_ps(a, b, 0xDD); // the odd ones
        _mm256_store_ps(values + i, _mm256_add_ps(value, _mm256_mul_ps(_mm256_load_ps(rests + i), slope)));
    }
#else
    for (std::size_t i = 0; i < count; ++i) {
        const float* pair = table + 2 * static_cast<std::size_t>(places[i]);
        values[i] = pair[0] + rests[i] * pair[1];
    }
#endif
}

/// Where light stands in a table.
void findPlaces(const float* light, std::size_t count, OctaveScale scale, std::uint32_t* places) {
    const std::uint32_t first = bitsOf(scale.lowest);
    const int shift = 23 - scale.mantissaBits;
    for (std::size_t i = 0; i < count; ++i)
        places[i] = (bitsOf(clamped(light[i], scale.lowest, scale.highest)) - first) >> shift;
    endPlaces(places, count);
}

void direct(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr, std::size_t count,
            const YCbCrMatrix& given, std::uint32_t* pixels) {
    const YCbCrMatrix matrix = given; // the pixels are not in it
    for (std::size_t i = 0; i < count; ++i) {
        const float luma = static_cast<float>(y[i]) * matrix.luma + matrix.offset;
        const auto blueness = static_cast<float>(cb[i] - neutralChroma);
        const auto redness = static_cast<float>(cr[i] - neutralChroma);
        const float red = luma + matrix.redFromCr * redness;
        const float green = luma + matrix.greenFromCb * blueness + matrix.greenFromCr * redness;
        const float blue = luma + matrix.blueFromCb * blueness;
        const std::uint32_t r = rounded(red, 255);
        const std::uint32_t g = rounded(green, 255);
        const std::uint32_t b = rounded(blue, 255);
        pixels[i] = b | g << 8 | r << 16 | 0xff000000U;
    }
}

/// What a stretch of pixels goes through.
struct Stretch {
    alignas(64) std::uint32_t place[3][stretch];
    alignas(64) float light[3][stretch];
    alignas(64) float rest[stretch];
    alignas(64) float norm[stretch];
    alignas(64) float gain[stretch];
};

void decode(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr, std::size_t count,
            const YCbCrMatrix& given, const float* table, Stretch& s) {
    const YCbCrMatrix matrix = given;
    for (std::size_t i = 0; i < count; ++i) {
        const float luma = static_cast<float>(y[i]) * matrix.luma + matrix.offset;
        const auto blueness = static_cast<float>(cb[i] - neutralChroma);
        const auto redness = static_cast<float>(cr[i] - neutralChroma);
        s.place[0][i] = rounded(luma + matrix.redFromCr * redness, decodeUnits - 1);
        s.place[1][i] = rounded(luma + matrix.greenFromCb * blueness + matrix.greenFromCr * redness, decodeUnits - 1);
        s.place[2][i] = rounded(luma + matrix.blueFromCb * blueness, decodeUnits - 1);
    }
    constexpr std::uint32_t unitsPerStep = decodeUnits / decodeSteps;
    for (int channel = 0; channel < 3; ++channel) {
        std::uint32_t* place = s.place[channel];
        for (std::size_t i = 0; i < count; ++i) {
            s.rest[i] = static_cast<float>(static_cast<std::int32_t>(place[i] % unitsPerStep)) * (1.0F / unitsPerStep);
            place[i] /= unitsPerStep;
        }
        endPlaces(place, count);
        interpolate(table, place, s.rest, count, s.light[channel]);
    }
}

/// Reads a table by octaves at the norms of a stretch, into its gains.
void lookUpNorms(std::size_t count, OctaveScale scale, const float* table, Stretch& s) {
    findPlaces(s.norm, count, scale, s.place[0]);
    lookUp(table, s.place[0], count, s.gain);
}

void applyGains(std::size_t count, Stretch& s) {
    for (auto& light : s.light)
        for (std::size_t i = 0; i < count; ++i)
            light[i] *= s.gain[i];
}

/// Scene light to display light.
void applySystemGamma(std::size_t count, const LinearLight& light, Stretch& s) {
    for (std::size_t i = 0; i < count; ++i)
        s.norm[i] = light.redLuminance * s.light[0][i] + light.greenLuminance * s.light[1][i] +
                    light.blueLuminance * s.light[2][i];
    lookUpNorms(count, light.systemScale, light.systemGain, s);
    applyGains(count, s);
}

void mapTones(std::size_t count, const LinearLight& light, Stretch& s) {
    for (std::size_t i = 0; i < count; ++i) {
        const float larger = s.light[0][i] > s.light[1][i] ? s.light[0][i] : s.light[1][i];
        s.norm[i] = larger > s.light[2][i] ? larger : s.light[2][i];
    }
    lookUpNorms(count, light.toneScale, light.toneCurve, s);
    // Dividing by the value itself, and not by the middle of its step, is what keeps a ramp from falling back.
    for (std::size_t i = 0; i < count; ++i)
        s.gain[i] /= clamped(s.norm[i], light.toneScale.lowest, light.toneScale.highest);
    applyGains(count, s);
}

void toDisplayPrimaries(std::size_t count, const LinearLight& light, Stretch& s) {
    for (std::size_t i = 0; i < count; ++i) {
        const float r = s.light[0][i];
        const float g = s.light[1][i];
        const float b = s.light[2][i];
        s.light[0][i] = r + (light.redFromGreen * (g - r) + light.redFromBlue * (b - r));
        s.light[1][i] = g + (light.greenFromRed * (r - g) + light.greenFromBlue * (b - g));
        s.light[2][i] = b + (light.blueFromRed * (r - b) + light.blueFromGreen * (g - b));
    }
}

void linear(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr, std::size_t count,
            const YCbCrMatrix& matrix, const LinearLight& light, std::uint32_t* pixels) {
    Stretch s;
    for (std::size_t done = 0; done < count; done += stretch) {
        const std::size_t part = count - done < stretch ? count - done : stretch;
        decode(y + done, cb + done, cr + done, part, matrix, light.decode, s);
        if (light.systemGain) applySystemGamma(part, light, s);
        if (light.toneCurve) mapTones(part, light, s);
        toDisplayPrimaries(part, light, s);
        for (int channel = 0; channel < 3; ++channel)
            findPlaces(s.light[channel], part, light.encodeScale, s.place[channel]);
        for (std::size_t i = 0; i < part; ++i)
            pixels[done + i] = static_cast<std::uint32_t>(light.encode[s.place[0][i]]) << 16 |
                               static_cast<std::uint32_t>(light.encode[s.place[1][i]]) << 8 |
                               light.encode[s.place[2][i]] | 0xff000000U;
    }
}

} // namespace

RowKernels kernels() {
    return {direct, linear};
}

} // namespace flowtide::display::FLOWTIDE_KERNEL_SET
