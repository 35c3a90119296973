// Sub-pixel positions of displaced patches, kept inside an image's padding.
#pragma once

#include "media/flow/kernels/kernels.h"
#include "media/flow/kernels/lanes.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

struct Motion {
    float x;
    float y;
};

inline int rounded(float value) {
    return static_cast<int>(value + (value < 0 ? -0.5F : 0.5F));
}

/// Keeps a patch, and the pixel that interpolation needs beside it, inside the padding.
inline int insideX(const ImageView& image, int x) {
    return clamp(x, -ImageView::padding, image.width + ImageView::padding - patchSize - 1);
}
inline int insideY(const ImageView& image, int y) {
    return clamp(y, -ImageView::padding, image.height + ImageView::padding - patchSize - 1);
}
inline const std::uint8_t* pixelAt(const ImageView& image, int x, int y) {
    return image.origin + y * image.stride + x;
}

/// Where a sampled patch starts: a whole pixel, and 64ths beyond it.
struct SubPixelPlace {
    const std::uint8_t* pixel;
    std::int16_t fractionX;
    std::int16_t fractionY;
};
inline SubPixelPlace placeIn(const ImageView& image, int left, int top, Motion motion) {
    const int x = rounded(motion.x * motionUnits);
    const int y = rounded(motion.y * motionUnits);
    return {pixelAt(image, insideX(image, left + (x >> 6)), insideY(image, top + (y >> 6))),
            static_cast<std::int16_t>(x & 63), static_cast<std::int16_t>(y & 63)};
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
