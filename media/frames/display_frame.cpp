// Resampling, conversion and turning, in this order.
#include "media/frames/display_frame.h"

#include "media/flowtide_error.h"
#include "media/frames/buffer_pool.h"
#include "media/frames/frame_pool.h"
#include "media/frames/plane_resampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace flowtide {

namespace {

/// Rows that are turned together: as many pixels as a cache line holds.
constexpr int stripRows = bufferAlignment / sizeof(std::uint32_t);

} // namespace

OutputSize fittedSize(OutputSize displayed, OutputSize box) {
    const auto side = [](std::int64_t value) { return std::max<double>(static_cast<double>(value), 1); };
    const double scale = std::min(side(box.width) / side(displayed.width), side(box.height) / side(displayed.height));
    return {std::max<std::int64_t>(std::llround(scale * side(displayed.width)), 1),
            std::max<std::int64_t>(std::llround(scale * side(displayed.height)), 1)};
}

OutputSize shrunkSize(OutputSize displayed, OutputSize box) {
    return fittedSize(displayed, {std::min(displayed.width, box.width), std::min(displayed.height, box.height)});
}

class DisplayConverter::Implementation {
public:
    DisplayFrame convert(const VideoFrame& frame, const PictureColor& color, const AffineTransform& orientation,
                         OutputSize size) {
        if (!color_ || describedColor_ != color || describedLayout_ != frame.layout) {
            color_.emplace(color, frame.layout);
            describedColor_ = color;
            describedLayout_ = frame.layout;
        }
        const QuarterTurn turn = quarterTurn(orientation);
        const auto width = static_cast<int>(size.width);
        const auto height = static_cast<int>(size.height);
        resample(frame, turn.transposes ? height : width, turn.transposes ? width : height);

        const std::size_t stride = alignedSize(static_cast<std::size_t>(width) * sizeof(std::uint32_t));
        const std::size_t bytes = stride * static_cast<std::size_t>(height);
        if (!memory_ || memory_->size() != bytes) memory_.emplace(bytes);
        const std::shared_ptr<std::uint8_t> owner = memory_->take();
        auto* pixels = reinterpret_cast<std::uint32_t*>(owner.get());
        const auto rowPixels = static_cast<std::ptrdiff_t>(stride / sizeof(std::uint32_t));
        if (turn.transposes)
            drawTransposed(turn, pixels, rowPixels);
        else
            draw(turn, pixels, rowPixels);
        return {width, height, pixels, static_cast<std::ptrdiff_t>(stride), owner};
    }

private:
    static constexpr int sampleDepth = 16;

    /// Brings the planes to one size without turning them.
    void resample(const VideoFrame& frame, int width, int height) {
        constexpr PixelLayout whole{ChromaSubsampling::yuv444, sampleDepth, false};
        if (!planes_ || planes_->width() != width || planes_->height() != height) planes_.emplace(whole, width, height);
        const WritableFrame target = planes_->take();
        const PictureRect everything{0, 0, static_cast<double>(frame.width), static_cast<double>(frame.height)};
        for (std::size_t plane = 0; plane < target.planes.size(); ++plane) {
            const PlaneSamples source{frame.planes[plane].data, frame.planes[plane].stride,
                                      planeWidth(frame.layout, frame.width, plane),
                                      planeHeight(frame.layout, frame.height, plane), frame.layout.bitDepth};
            const WritablePlane samples{target.planes[plane], target.frame.planes[plane].stride, width, height,
                                        sampleDepth};
            if (!resamplers_[plane == 0 ? 0 : 1].resample(
                    source, sitedRect(frame.layout, everything, whole, width, height, plane),
                    plane == 0 ? ResampleFilter::catmullRom : ResampleFilter::linear, samples))
                throw FlowtideError::compositionFailed("Could not scale a frame for display");
        }
        resampled_ = target.frame;
    }

    void convertRow(int row, std::uint32_t* pixels) const {
        const auto samples = [&](std::size_t plane) {
            const VideoFrame::Plane& from = resampled_.planes[plane];
            return reinterpret_cast<const std::uint16_t*>(from.data + row * from.stride);
        };
        color_->convertRow(samples(0), samples(1), samples(2), static_cast<std::size_t>(resampled_.width), pixels);
    }

    void draw(const QuarterTurn& turn, std::uint32_t* pixels, std::ptrdiff_t rowPixels) const {
        for (int row = 0; row < resampled_.height; ++row) {
            std::uint32_t* to = pixels + (turn.reversesRows ? resampled_.height - 1 - row : row) * rowPixels;
            convertRow(row, to);
            if (turn.reversesColumns) std::reverse(to, to + resampled_.width);
        }
    }

    void drawTransposed(const QuarterTurn& turn, std::uint32_t* pixels, std::ptrdiff_t rowPixels) {
        // The rows of a strip must not all fall into one set of the cache.
        const auto stripPixels = static_cast<std::size_t>(resampled_.width + stripRows);
        strip_.resize(stripPixels * stripRows);
        for (int top = 0; top < resampled_.height; top += stripRows) {
            const int rows = std::min(stripRows, resampled_.height - top);
            for (int row = 0; row < rows; ++row) // in the upright picture's order
                convertRow(turn.reversesColumns ? top + rows - 1 - row : top + row,
                           strip_.data() + static_cast<std::size_t>(row) * stripPixels);
            const int left = turn.reversesColumns ? resampled_.height - top - rows : top;
            for (int column = 0; column < resampled_.width; ++column) {
                std::uint32_t* to =
                    pixels + (turn.reversesRows ? resampled_.width - 1 - column : column) * rowPixels + left;
                const std::uint32_t* from = strip_.data() + column;
                for (int row = 0; row < rows; ++row)
                    to[row] = from[static_cast<std::size_t>(row) * stripPixels];
            }
        }
    }

    std::optional<DisplayColor> color_;
    PictureColor describedColor_;
    PixelLayout describedLayout_;
    std::array<PlaneResampler, 2> resamplers_; ///< for luma, and for both chroma planes
    std::optional<FramePool> planes_;
    VideoFrame resampled_;
    std::vector<std::uint32_t> strip_;
    std::optional<BufferPool> memory_;
};

DisplayConverter::DisplayConverter()
    : implementation_(std::make_unique<Implementation>()) {}
DisplayConverter::~DisplayConverter() = default;

DisplayFrame DisplayConverter::convert(const VideoFrame& frame, const PictureColor& color,
                                       const AffineTransform& orientation, OutputSize size) {
    return implementation_->convert(frame, color, orientation, size);
}

} // namespace flowtide
