// The square of a picture in which an object is looked for.
#pragma once

#include "core/subject_box.h"
#include "media/tracking/kernels.h"
#include "media/tracking/subject_picture.h"

#include <cmath>
#include <cstddef>

namespace flowtide::tracking {

/// A box in the picture's pixels, by its middle.
struct PixelBox {
    double centerX = 0;
    double centerY = 0;
    double width = 0;
    double height = 0;

    static PixelBox of(const SubjectBox& box, const SubjectPicture& picture) {
        return {box.midX() * picture.width(), box.midY() * picture.height(), box.width * picture.width(),
                box.height * picture.height()};
    }
    SubjectBox asFraction(const SubjectPicture& picture) const {
        return {(centerX - width / 2) / picture.width(), (centerY - height / 2) / picture.height(),
                width / picture.width(), height / picture.height()};
    }
    double meanSide() const { return std::sqrt(width * height); }
};

struct SearchWindow {
    double centerX = 0; ///< pixels
    double centerY = 0;
    double side = 0;

    /// Around a box, with a margin of its mean side.
    static SearchWindow around(const PixelBox& box) {
        constexpr double margin = 0.75; // of width + height, to both together
        const double padding = margin * (box.width + box.height);
        return {box.centerX, box.centerY, std::sqrt((box.width + padding) * (box.height + padding))};
    }
    double cell() const { return side / gridSide; }
};

/// Samples a rectangle of the picture's luma, `cells` cells along each side, at the level of the pyramid whose pixels
/// are hardly smaller than the samples' distance.
inline void sampleLuma(const Kernels& kernels, const SubjectPicture& picture, double left, double top, double width,
                       double height, int cells, float* patch) {
    const double stepX = width / (cells * cellSide);
    const double stepY = height / (cells * cellSide);
    std::size_t level = 0;
    while (level + 1 < SubjectPicture::levelCount && std::sqrt(stepX * stepY) >= 1.5 * static_cast<double>(1 << level))
        ++level;
    // The half-sized levels round odd sizes down, so that their scale is exact in powers of two.
    const double scale = 1.0 / static_cast<double>(1 << level);
    const SampleGrid grid{(left - stepX / 2) * scale, (top - stepY / 2) * scale, stepX * scale, stepY * scale,
                          patchSide(cells)};
    kernels.sample(picture.luma[level], grid, patch);
}

} // namespace flowtide::tracking
