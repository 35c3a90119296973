// Small upright copies of frames, as the tracker looks at them.
#pragma once

#include "media/frames/buffer_pool.h"
#include "media/frames/plane_resampler.h"
#include "media/orientation.h"
#include "media/video_frame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace flowtide::tracking {

/// The samples of one plane, a byte each.
struct BytePlane {
    const std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; ///< bytes
    int width = 0;
    int height = 0;
};

/// A frame as displayed, in 8 bits, at most `longestSide` pixels long. Shared by reference, never written to once made.
struct SubjectPicture {
    static constexpr int longestSide = 640; ///< more costs time and finds no subject better
    static constexpr std::size_t levelCount = 4;

    std::array<BytePlane, levelCount> luma; ///< each level half the size of the one before
    std::array<BytePlane, 2> chroma;        ///< half of the first level's size
    bool fullRange = false;
    std::shared_ptr<const void> owner;

    int width() const { return luma[0].width; }
    int height() const { return luma[0].height; }
};

/// Makes pictures of frames. One thread at a time; its pictures may outlive it.
class SubjectPictureMaker {
public:
    /// `orientation`: how the frames are turned for display.
    explicit SubjectPictureMaker(const AffineTransform& orientation)
        : turn_(quarterTurn(orientation)) {}

    /// Nothing when the frame cannot be resampled.
    std::optional<SubjectPicture> make(const VideoFrame& frame);

private:
    bool resample(const VideoFrame& frame, std::size_t plane, const WritablePlane& target);

    QuarterTurn turn_;
    std::array<PlaneResampler, 2> resamplers_; ///< for luma, and for both chroma planes
    std::optional<BufferPool> memory_;
    std::optional<BufferPool> unturned_;
};

} // namespace flowtide::tracking
