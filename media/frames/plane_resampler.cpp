// The resampler on zimg, a plane at a time: odd sizes and views into larger frames are then nothing special.
#include "media/frames/plane_resampler.h"

#include <zimg.h>

#include <cstring>
#include <optional>

namespace flowtide {

namespace {

struct GraphDelete {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};
using GraphPtr = std::unique_ptr<zimg_filter_graph, GraphDelete>;

/// What a graph is built for.
struct GraphKey {
    int sourceWidth, sourceHeight, sourceDepth;
    int width, height, depth;
    PictureRect rect;
    ResampleFilter filter;
    friend bool operator==(const GraphKey&, const GraphKey&) = default;
};

void setFilter(zimg_graph_builder_params& parameters, ResampleFilter filter) {
    switch (filter) {
    case ResampleFilter::lanczos:
        parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
        parameters.filter_param_a = 3;
        break;
    case ResampleFilter::catmullRom:
        parameters.resample_filter = ZIMG_RESIZE_BICUBIC;
        parameters.filter_param_a = 0;
        parameters.filter_param_b = 0.5;
        break;
    case ResampleFilter::linear:
        parameters.resample_filter = ZIMG_RESIZE_BILINEAR;
        break;
    }
}

GraphPtr buildGraph(const GraphKey& key) {
    const auto format = [](int width, int height, int bitDepth) {
        zimg_image_format result;
        zimg_image_format_default(&result, ZIMG_API_VERSION);
        result.width = static_cast<unsigned>(width);
        result.height = static_cast<unsigned>(height);
        result.pixel_type = bitDepth > 8 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
        result.depth = static_cast<unsigned>(bitDepth);
        result.color_family = ZIMG_COLOR_GREY;
        result.pixel_range = ZIMG_RANGE_LIMITED; // between depths the codes are shifted, whatever their range
        return result;
    };
    zimg_image_format source = format(key.sourceWidth, key.sourceHeight, key.sourceDepth);
    source.active_region.left = key.rect.left;
    source.active_region.top = key.rect.top;
    source.active_region.width = key.rect.width;
    source.active_region.height = key.rect.height;
    const zimg_image_format target = format(key.width, key.height, key.depth);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    setFilter(parameters, key.filter);
    parameters.cpu_type = ZIMG_CPU_AUTO_64B;
    return GraphPtr(zimg_filter_graph_build(&source, &target, &parameters));
}

/// Memory that only grows.
class Scratch {
public:
    std::uint8_t* ofSize(std::size_t size) {
        if (size > size_) {
            bytes_ = alignedBytes(size);
            size_ = size;
        }
        return bytes_.get();
    }

private:
    AlignedBytes bytes_;
    std::size_t size_ = 0;
};

bool isAligned(const PlaneSamples& plane) {
    return reinterpret_cast<std::uintptr_t>(plane.data) % bufferAlignment == 0 &&
           static_cast<std::size_t>(plane.stride) % bufferAlignment == 0;
}

} // namespace

PictureRect sitedRect(PixelLayout source, const PictureRect& rect, PixelLayout target, int width, int height,
                      std::size_t plane) {
    const double stepX = rect.width / width; // source samples for one of the target's, in luma
    const double stepY = rect.height / height;
    const int sourceShift = plane == 0 ? 0 : source.horizontalChromaShift();
    const int targetShift = plane == 0 ? 0 : target.horizontalChromaShift();
    const int sourceRowShift = plane == 0 ? 0 : source.verticalChromaShift();
    const int targetRowShift = plane == 0 ? 0 : target.verticalChromaShift();
    // The left edge of a plane lies half a pixel before the picture's where chroma is halved: luma position x is chroma
    // position (x + ½) ÷ 2.
    double left = rect.left - (targetShift > 0 ? 0.5 * stepX : 0);
    if (sourceShift > 0) left = (left + 0.5) / 2;
    return {left, rect.top / (1 << sourceRowShift),
            stepX * planeWidth(target, width, plane) * (1 << targetShift) / (1 << sourceShift),
            stepY * planeHeight(target, height, plane) * (1 << targetRowShift) / (1 << sourceRowShift)};
}

class PlaneResampler::Implementation {
public:
    bool resample(const PlaneSamples& given, const PictureRect& rect, ResampleFilter filter,
                  const WritablePlane& target) {
        const GraphKey key{given.width,   given.height,    given.bitDepth, target.width,
                           target.height, target.bitDepth, rect,           filter};
        if (key_ != key) {
            graph_ = buildGraph(key);
            key_ = key;
        }
        std::size_t scratchSize = 0;
        if (!graph_ || zimg_filter_graph_get_tmp_size(graph_.get(), &scratchSize) != ZIMG_ERROR_SUCCESS) return false;
        const PlaneSamples plane = aligned(given);
        zimg_image_buffer_const source{};
        source.version = ZIMG_API_VERSION;
        source.plane[0].data = plane.data;
        source.plane[0].stride = plane.stride;
        source.plane[0].mask = ZIMG_BUFFER_MAX;
        zimg_image_buffer result{};
        result.version = ZIMG_API_VERSION;
        result.plane[0].data = target.data;
        result.plane[0].stride = target.stride;
        result.plane[0].mask = ZIMG_BUFFER_MAX;
        return zimg_filter_graph_process(graph_.get(), &source, &result, scratch_.ofSize(scratchSize), nullptr, nullptr,
                                         nullptr, nullptr) == ZIMG_ERROR_SUCCESS;
    }

private:
    /// The plane itself, or a copy where its rows begin in the middle of a vector: zimg would crash.
    PlaneSamples aligned(const PlaneSamples& plane) {
        if (isAligned(plane)) return plane;
        const std::size_t rowBytes = static_cast<std::size_t>(plane.width) * (plane.bitDepth > 8 ? 2 : 1);
        const std::size_t stride = alignedSize(rowBytes);
        PlaneSamples copy = plane;
        std::uint8_t* row = copy_.ofSize(stride * static_cast<std::size_t>(plane.height));
        copy.data = row;
        copy.stride = static_cast<std::ptrdiff_t>(stride);
        for (int y = 0; y < plane.height; ++y, row += stride)
            std::memcpy(row, plane.data + y * plane.stride, rowBytes);
        return copy;
    }

    std::optional<GraphKey> key_;
    GraphPtr graph_;
    Scratch scratch_;
    Scratch copy_;
};

PlaneResampler::PlaneResampler()
    : implementation_(std::make_unique<Implementation>()) {}
PlaneResampler::~PlaneResampler() = default;

bool PlaneResampler::resample(const PlaneSamples& source, const PictureRect& rect, ResampleFilter filter,
                              const WritablePlane& target) {
    return implementation_->resample(source, rect, filter, target);
}

} // namespace flowtide
