// Gathers and bilinear samples of fields and images at eight places at once.
#pragma once

#include "media/flow/kernels/kernels.h"
#include "media/flow/kernels/lanes.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

/// 0, 1, … 7.
inline Int8 laneNumbers() {
    return Int8{0, 1, 2, 3, 4, 5, 6, 7};
}

/// Four bytes from each of eight places.
inline Int8 gathered(const void* base, Int8 byteOffsets) {
#if defined(__AVX2__)
    return reinterpret_cast<Int8>(
        _mm256_i32gather_epi32(static_cast<const int*>(base), reinterpret_cast<__m256i>(byteOffsets), 1));
#else
    Int8 result;
    for (int i = 0; i < 8; ++i) {
        std::int32_t value = 0;
        std::memcpy(&value, static_cast<const std::uint8_t*>(base) + byteOffsets[i], sizeof value);
        result[i] = value;
    }
    return result;
#endif
}

/// Eight vectors, a component at a time.
struct Motion8 {
    Int8 x;
    Int8 y;
};
inline Motion8 unpacked(Int8 vectors) {
    return {(vectors << 16) >> 16, vectors >> 16};
}
inline Motion8 loadMotion(const MotionVector* from) {
    return unpacked(load<Int8>(from));
}
inline Int8 packed(Motion8 motion) {
    return (motion.y << 16) | (motion.x & 0xFFFF);
}

/// Stores the first `count` of eight four-byte values.
inline void storeFirst(void* to, Int8 values, int count) {
    if (count >= 8)
        store(to, values);
    else
        std::memcpy(to, &values, static_cast<std::size_t>(count) * sizeof(std::int32_t));
}
/// Stores the low bytes of the first `count` of eight values.
inline void storeBytes(std::uint8_t* to, Int8 values, int count) {
    const Byte8 bytes = toByte(values);
    if (count >= 8)
        store(to, bytes);
    else
        std::memcpy(to, &bytes, static_cast<std::size_t>(count));
}
inline Int8 loadBytes(const std::uint8_t* from) {
    return toInt(load<Byte8>(from));
}

/// One bit for each lane of a comparison.
inline unsigned bits(Int8 lanes) {
#if defined(__AVX2__)
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<__m256>(lanes)));
#else
    unsigned result = 0;
    for (int i = 0; i < 8; ++i)
        result |= lanes[i] ? 1U << i : 0U;
    return result;
#endif
}
inline bool any(Int8 lanes) {
#if defined(__AVX2__)
    return _mm256_movemask_epi8(reinterpret_cast<__m256i>(lanes)) != 0;
#else
    const Int4 four = lowHalf(lanes) | highHalf(lanes);
    return (four[0] | four[1] | four[2] | four[3]) != 0;
#endif
}

/// Bilinear values of an image at places in MotionVector's units, times 4096; the edge's value outside.
inline Int8 imageAt(const ImageView& image, Int8 x, Int8 y) {
    const int reach = (ImageView::padding - 1) * motionUnits;
    x = clamp(x, Int8{} - reach, Int8{} + ((image.width - 1) * motionUnits + reach - motionUnits * 3));
    y = clamp(y, Int8{} - reach, Int8{} + ((image.height - 1) * motionUnits + reach - motionUnits));
    const Int8 right = x & (motionUnits - 1);
    const Int8 below = y & (motionUnits - 1);
    const Int8 offset = (y >> 6) * static_cast<int>(image.stride) + (x >> 6);
    const Int8 upper = gathered(image.origin, offset);
    const Int8 lower = gathered(image.origin + image.stride, offset);
    const Int8 left = motionUnits - right;
    const Int8 top = (upper & 255) * left + ((upper >> 8) & 255) * right;
    const Int8 bottom = (lower & 255) * left + ((lower >> 8) & 255) * right;
    return top * (motionUnits - below) + bottom * below;
}
constexpr float imageUnits = 4096; // of imageAt()

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
