// Padded 8-bit luma, the only picture that motion is estimated on.
#pragma once

#include "media/flow/kernels/kernels.h"
#include "media/video_frame.h"

#include <algorithm>
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
    friend bool operator==(const Vector&, const Vector&) = default;
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
    /// Bilinear value at a point (pixel centres at whole numbers), the edge's value outside.
    float at(float x, float y) const {
        const float px = std::clamp(x, 0.0F, static_cast<float>(width_ - 1));
        const float py = std::clamp(y, 0.0F, static_cast<float>(height_ - 1));
        const int ix = static_cast<int>(px);
        const int iy = static_cast<int>(py);
        const float fx = px - static_cast<float>(ix);
        const float fy = py - static_cast<float>(iy);
        const std::uint8_t* a = row(iy) + ix;
        const std::uint8_t* b = a + stride_;
        const float top = static_cast<float>(a[0]) + fx * static_cast<float>(a[1] - a[0]);
        const float bottom = static_cast<float>(b[0]) + fx * static_cast<float>(b[1] - b[0]);
        return top + fy * (bottom - top);
    }
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
