// Padded 8-bit luma, the only picture that motion is estimated on.
#pragma once

#include "media/flow/kernels/kernels.h"
#include "media/video_frame.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace flowtide::flow {

/// A point or a displacement, in pixels of the level it belongs to.
struct Vector {
    float x = 0;
    float y = 0;
    friend Vector operator+(Vector a, Vector b) { return {a.x + b.x, a.y + b.y}; }
    friend Vector operator-(Vector a, Vector b) { return {a.x - b.x, a.y - b.y}; }
    friend Vector operator*(float factor, Vector v) { return {factor * v.x, factor * v.y}; }
    float squared() const { return x * x + y * y; }
};

/// An image whose edge pixels are repeated outwards, so that patches may reach over the edge.
class GrayImage {
public:
    static constexpr int padding = ImageView::padding;

    GrayImage(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    std::ptrdiff_t stride() const { return stride_; }
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

/// Half the size, each pixel the [1 3 3 1]² mean around it.
GrayImage halved(const GrayImage& image);

} // namespace flowtide::flow
