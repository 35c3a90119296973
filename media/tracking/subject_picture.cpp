// Resamples, turns and halves.
#include "media/tracking/subject_picture.h"

#include <algorithm>
#include <cmath>

namespace flowtide::tracking {

namespace {

constexpr PixelLayout pictureLayout{ChromaSubsampling::yuv420, 8, false};

struct Size {
    int width;
    int height;
};

/// The size in which a frame is looked at: never enlarged, both sides even.
Size reducedSize(int width, int height) {
    const double scale = std::min(1.0, static_cast<double>(SubjectPicture::longestSide) / std::max(width, height));
    const auto even = [&](int side) { return std::max(2, 2 * static_cast<int>(std::lround(side * scale / 2))); };
    return {even(width), even(height)};
}

std::size_t strideFor(int width) {
    return alignedSize(static_cast<std::size_t>(width));
}

std::size_t bytesFor(Size size) {
    return strideFor(size.width) * static_cast<std::size_t>(size.height);
}

WritablePlane planeAt(std::uint8_t* data, Size size) {
    return {data, static_cast<std::ptrdiff_t>(strideFor(size.width)), size.width, size.height, 8};
}

Size halved(Size size) {
    return {std::max(1, size.width / 2), std::max(1, size.height / 2)};
}

void turn(const WritablePlane& from, QuarterTurn turn, const WritablePlane& to) {
    for (int y = 0; y < to.height; ++y) {
        const int row = turn.reversesRows ? to.height - 1 - y : y;
        std::uint8_t* out = to.data + y * to.stride;
        for (int x = 0; x < to.width; ++x) {
            const int column = turn.reversesColumns ? to.width - 1 - x : x;
            out[x] = turn.transposes ? from.data[column * from.stride + row] : from.data[row * from.stride + column];
        }
    }
}

void halve(const WritablePlane& from, const WritablePlane& to) {
    for (int y = 0; y < to.height; ++y) {
        const std::uint8_t* above = from.data + std::min(2 * y, from.height - 1) * from.stride;
        const std::uint8_t* below = from.data + std::min(2 * y + 1, from.height - 1) * from.stride;
        std::uint8_t* out = to.data + y * to.stride;
        const int last = from.width - 1;
        for (int x = 0; x < to.width; ++x) {
            const int right = std::min(2 * x + 1, last);
            out[x] = static_cast<std::uint8_t>((above[2 * x] + above[right] + below[2 * x] + below[right] + 2) >> 2);
        }
    }
}

BytePlane readable(const WritablePlane& plane) {
    return {plane.data, plane.stride, plane.width, plane.height};
}

} // namespace

bool SubjectPictureMaker::resample(const VideoFrame& frame, std::size_t plane, const WritablePlane& target) {
    const int shift = plane == 0 ? 0 : 1;
    const PictureRect everything{0, 0, static_cast<double>(frame.width), static_cast<double>(frame.height)};
    const PlaneSamples source{frame.planes[plane].data, frame.planes[plane].stride,
                              planeWidth(frame.layout, frame.width, plane),
                              planeHeight(frame.layout, frame.height, plane), frame.layout.bitDepth};
    return resamplers_[plane == 0 ? 0 : 1].resample(
        source,
        sitedRect(frame.layout, everything, pictureLayout, target.width << shift, target.height << shift, plane),
        ResampleFilter::linear, target);
}

std::optional<SubjectPicture> SubjectPictureMaker::make(const VideoFrame& frame) {
    const Size reduced = reducedSize(frame.width, frame.height);
    const Size upright = turn_.transposes ? Size{reduced.height, reduced.width} : reduced;
    std::size_t bytes = 2 * bytesFor(halved(upright));
    Size level = upright;
    for (std::size_t i = 0; i < SubjectPicture::levelCount; ++i, level = halved(level))
        bytes += bytesFor(level);
    if (!memory_ || memory_->size() != bytes) memory_.emplace(bytes);
    if (!unturned_ || unturned_->size() != bytesFor(reduced)) unturned_.emplace(bytesFor(reduced));

    SubjectPicture picture;
    picture.fullRange = frame.layout.fullRange;
    const std::shared_ptr<std::uint8_t> owner = memory_->take();
    picture.owner = owner;
    std::uint8_t* next = owner.get();
    const auto place = [&](Size size) {
        const WritablePlane plane = planeAt(next, size);
        next += bytesFor(size);
        return plane;
    };
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const WritablePlane target = place(plane == 0 ? upright : halved(upright));
        if (turn_ == QuarterTurn{}) {
            if (!resample(frame, plane, target)) return std::nullopt;
        } else {
            const auto memory = unturned_->take();
            const WritablePlane lying = planeAt(memory.get(), plane == 0 ? reduced : halved(reduced));
            if (!resample(frame, plane, lying)) return std::nullopt;
            turn(lying, turn_, target);
        }
        (plane == 0 ? picture.luma[0] : picture.chroma[plane - 1]) = readable(target);
        if (plane > 0) continue;
        WritablePlane above = target;
        for (std::size_t i = 1; i < SubjectPicture::levelCount; ++i) {
            const WritablePlane half = place(halved({above.width, above.height}));
            halve(above, half);
            picture.luma[i] = readable(half);
            above = half;
        }
    }
    return picture;
}

} // namespace flowtide::tracking
