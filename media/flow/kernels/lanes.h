// Short vectors for the kernels. The kernel files are compiled once for any machine and once for AVX2, each time into
// a namespace of its own; all operations are exact or rounded as IEEE 754 says, so both give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

using Byte8 = std::uint8_t __attribute__((vector_size(8)));
using Byte16 = std::uint8_t __attribute__((vector_size(16)));
using Short8 = std::int16_t __attribute__((vector_size(16)));
using Word8 = std::uint16_t __attribute__((vector_size(16)));
using Short16 = std::int16_t __attribute__((vector_size(32)));
using Word16 = std::uint16_t __attribute__((vector_size(32)));
using Int4 = std::int32_t __attribute__((vector_size(16)));
using Int8 = std::int32_t __attribute__((vector_size(32)));
using Float4 = float __attribute__((vector_size(16)));
using Float8 = float __attribute__((vector_size(32)));

template <typename Vector>
inline Vector load(const void* from) {
    Vector result;
    std::memcpy(&result, from, sizeof result);
    return result;
}
template <typename Vector>
inline void store(void* to, Vector value) {
    std::memcpy(to, &value, sizeof value);
}

// The standard library's templates would be shared with code for other machines.
template <typename Value>
inline Value min(Value a, Value b) {
    return a < b ? a : b;
}
template <typename Value>
inline Value max(Value a, Value b) {
    return a > b ? a : b;
}
template <typename Value>
inline Value clamp(Value value, Value low, Value high) {
    return min(max(value, low), high);
}

inline Float8 toFloat(Int8 value) {
    return __builtin_convertvector(value, Float8);
}
/// Towards zero; the values fit.
inline Int8 toInt(Float8 value) {
    return __builtin_convertvector(value, Int8);
}
inline Float8 absolute(Float8 value) {
    return max(value, -value);
}

// What the compilers make of plain conversions is several times slower where there is one instruction for it.
inline Short8 widened(Byte8 bytes) {
#if defined(__AVX2__)
    return reinterpret_cast<Short8>(_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&bytes))));
#else
    return __builtin_convertvector(bytes, Short8);
#endif
}
inline Short16 widened(Byte16 bytes) {
#if defined(__AVX2__)
    return reinterpret_cast<Short16>(_mm256_cvtepu8_epi16(reinterpret_cast<__m128i>(bytes)));
#else
    return __builtin_convertvector(bytes, Short16);
#endif
}
inline Int8 toInt(Byte8 bytes) {
#if defined(__AVX2__)
    return reinterpret_cast<Int8>(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&bytes))));
#else
    return __builtin_convertvector(bytes, Int8);
#endif
}
inline Int8 toInt(Short8 values) {
#if defined(__AVX2__)
    return reinterpret_cast<Int8>(_mm256_cvtepi16_epi32(reinterpret_cast<__m128i>(values)));
#else
    return __builtin_convertvector(values, Int8);
#endif
}
/// The values fit.
inline Short8 toShort(Int8 values) {
#if defined(__AVX2__)
    const auto all = reinterpret_cast<__m256i>(values);
    return reinterpret_cast<Short8>(_mm_packs_epi32(_mm256_castsi256_si128(all), _mm256_extracti128_si256(all, 1)));
#else
    return __builtin_convertvector(values, Short8);
#endif
}
/// The values fit.
inline Byte8 toByte(Int8 values) {
#if defined(__AVX2__)
    const auto words = reinterpret_cast<__m128i>(toShort(values));
    return reinterpret_cast<Byte8>(_mm_cvtsi128_si64(_mm_packus_epi16(words, words)));
#else
    return __builtin_convertvector(values, Byte8);
#endif
}

/// a[2i]·b[2i] + a[2i+1]·b[2i+1].
inline Int4 pairProducts(Short8 a, Short8 b) {
#if defined(__SSE2__)
    return reinterpret_cast<Int4>(_mm_madd_epi16(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
#else
    Int4 result;
    for (int i = 0; i < 4; ++i)
        result[i] = a[2 * i] * b[2 * i] + a[2 * i + 1] * b[2 * i + 1];
    return result;
#endif
}
inline Short8 lowHalf(Short16 value) {
    return __builtin_shufflevector(value, value, 0, 1, 2, 3, 4, 5, 6, 7);
}
inline Short8 highHalf(Short16 value) {
    return __builtin_shufflevector(value, value, 8, 9, 10, 11, 12, 13, 14, 15);
}
inline Int4 lowHalf(Int8 value) {
    return __builtin_shufflevector(value, value, 0, 1, 2, 3);
}
inline Int4 highHalf(Int8 value) {
    return __builtin_shufflevector(value, value, 4, 5, 6, 7);
}
inline Int8 joined(Int4 low, Int4 high) {
    return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
}
inline Short16 joined(Short8 low, Short8 high) {
    return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}
inline Int8 pairProducts(Short16 a, Short16 b) {
#if defined(__AVX2__)
    return reinterpret_cast<Int8>(_mm256_madd_epi16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#else
    return joined(pairProducts(lowHalf(a), lowHalf(b)), pairProducts(highHalf(a), highHalf(b)));
#endif
}

/// a · b / 2^15, rounded.
inline Short16 roundedHigh(Short16 a, Short16 b) {
#if defined(__AVX2__)
    return reinterpret_cast<Short16>(_mm256_mulhrs_epi16(reinterpret_cast<__m256i>(a), reinterpret_cast<__m256i>(b)));
#else
    Short16 result;
    for (int i = 0; i < 16; ++i)
        result[i] = static_cast<std::int16_t>((a[i] * b[i] + (1 << 14)) >> 15);
    return result;
#endif
}

/// The sums of the four vectors' lanes.
inline Int4 sums(Int8 a, Int8 b, Int8 c, Int8 d) {
    const Int4 fourA = lowHalf(a) + highHalf(a);
    const Int4 fourB = lowHalf(b) + highHalf(b);
    const Int4 fourC = lowHalf(c) + highHalf(c);
    const Int4 fourD = lowHalf(d) + highHalf(d);
    const Int4 ab =
        __builtin_shufflevector(fourA, fourB, 0, 4, 1, 5) + __builtin_shufflevector(fourA, fourB, 2, 6, 3, 7);
    const Int4 cd =
        __builtin_shufflevector(fourC, fourD, 0, 4, 1, 5) + __builtin_shufflevector(fourC, fourD, 2, 6, 3, 7);
    return __builtin_shufflevector(ab, cd, 0, 1, 4, 5) + __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
