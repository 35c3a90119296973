// The pyramid of padded 8-bit luma that motion is estimated on.
#pragma once

#include "media/flow/kernels/kernels.h"
#include "media/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace flowtide::flow {

/// An image whose edge pixels are repeated outwards, so that patches may reach over the edge.
class GrayImage {
public:
    static constexpr int padding = ImageView::padding;

    GrayImage(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    /// Row `y`, from -padding to height + padding - 1; x runs from -padding to width + padding - 1.
    const std::uint8_t* row(int y) const { return data_.data() + (y + padding) * stride_ + padding; }
    std::uint8_t* row(int y) { return data_.data() + (y + padding) * stride_ + padding; }
    ImageView view() const { return {row(0), stride_, width_, height_}; }
    /// Copies the edges outwards; to be called once the inside is filled.
    void pad();

private:
    int width_;
    int height_;
    std::ptrdiff_t stride_;
    std::vector<std::uint8_t> data_;
};

/// A frame's luma at half resolution (level 0) and halved again down to about 16 pixels.
std::vector<GrayImage> lumaPyramid(const VideoFrame& frame);

/// Half the size, rounded up: the reduce step of a Gaussian pyramid (Burt and Adelson, "The Laplacian Pyramid as a
/// Compact Image Code", 1983) with the even binomial kernel [1 3 3 1]² / 64, so that pixel centres stay in place.
GrayImage halved(const GrayImage& image);

} // namespace flowtide::flow
