// Two-dimensional arrays for what estimation knows of each pixel, with slack at their end: kernels may read and write a
// whole vector past the last value.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace flowtide::flow {

/// A rectangle of values, row after row without gaps.
template <typename Value>
class Field {
public:
    Field() = default;
    Field(int width, int height, Value value = Value())
        : width_(width)
        , height_(height)
        , values_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + slack, value) {}

    /// Makes room for a size; what the values are then is undefined unless the size is the one that it was.
    void resize(int width, int height) {
        if (width != width_ || height != height_) *this = Field(width, height);
    }

    int width() const { return width_; }
    int height() const { return height_; }
    Value* row(int y) { return values_.data() + static_cast<std::ptrdiff_t>(y) * width_; }
    const Value* row(int y) const { return values_.data() + static_cast<std::ptrdiff_t>(y) * width_; }
    Value& operator()(int x, int y) { return row(y)[x]; }
    const Value& operator()(int x, int y) const { return row(y)[x]; }
    /// The value at a place, or at the nearest place inside.
    const Value& clamped(int x, int y) const {
        return (*this)(std::clamp(x, 0, width_ - 1), std::clamp(y, 0, height_ - 1));
    }

private:
    static constexpr std::size_t slack = 32 / sizeof(Value) + 1;

    int width_ = 0;
    int height_ = 0;
    std::vector<Value> values_;
};

} // namespace flowtide::flow
