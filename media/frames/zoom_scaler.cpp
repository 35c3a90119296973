// The zoom scaler on zimg, a plane at a time: odd sizes and views into larger frames are then nothing special.
#include "media/frames/zoom_scaler.h"

#include "media/flowtide_error.h"
#include "media/frames/frame_pool.h"

#include <zimg.h>

#include <array>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

namespace flowtide {

namespace {

constexpr const char* scalerFailure = "Could not allocate a zoom output buffer";

struct GraphDelete {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};
using GraphPtr = std::unique_ptr<zimg_filter_graph, GraphDelete>;

/// What a graph is built for.
struct GraphKey {
    int sourceWidth, sourceHeight, width, height, bitDepth;
    PictureRect rect; ///< in the plane's own samples
    friend bool operator==(const GraphKey&, const GraphKey&) = default;
};

GraphPtr buildGraph(const GraphKey& key) {
    const auto format = [&](int width, int height) {
        zimg_image_format result;
        zimg_image_format_default(&result, ZIMG_API_VERSION);
        result.width = static_cast<unsigned>(width);
        result.height = static_cast<unsigned>(height);
        result.pixel_type = key.bitDepth > 8 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
        result.depth = static_cast<unsigned>(key.bitDepth);
        result.color_family = ZIMG_COLOR_GREY;
        result.pixel_range = ZIMG_RANGE_FULL; // the same on both sides: values pass unchanged
        return result;
    };
    zimg_image_format source = format(key.sourceWidth, key.sourceHeight);
    source.active_region.left = key.rect.left;
    source.active_region.top = key.rect.top;
    source.active_region.width = key.rect.width;
    source.active_region.height = key.rect.height;
    const zimg_image_format target = format(key.width, key.height);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
    parameters.cpu_type = ZIMG_CPU_AUTO_64B;
    return GraphPtr(zimg_filter_graph_build(&source, &target, &parameters));
}

/// The rectangle in a plane's own samples. Chroma is sited at the left of its luma pair and midway between rows, as
/// H.264, HEVC and ProRes have it unless they say otherwise: luma position x is chroma position (x + ½) ÷ 2.
PictureRect planeRect(PixelLayout layout, std::size_t plane, const PictureRect& rect, int width, int height) {
    const int sampledWidth = planeWidth(layout, width, plane);
    const int sampledHeight = planeHeight(layout, height, plane);
    const double stepX = rect.width / width; // source samples for one of the output's, in either plane
    const double stepY = rect.height / height;
    PictureRect result{rect.left, rect.top, stepX * sampledWidth, stepY * sampledHeight};
    if (plane > 0 && layout.horizontalChromaShift() > 0) result.left = (rect.left + 0.5 - 0.5 * stepX) / 2;
    if (plane > 0 && layout.verticalChromaShift() > 0) result.top = rect.top / 2;
    return result;
}

bool isAligned(const VideoFrame::Plane& plane) {
    return reinterpret_cast<std::uintptr_t>(plane.data) % FramePool::alignment == 0 &&
           static_cast<std::size_t>(plane.stride) % FramePool::alignment == 0;
}

} // namespace

class ZoomScaler::Implementation {
public:
    VideoFrame scale(const VideoFrame& given, const PictureRect& rect, int width, int height) {
        const VideoFrame frame = aligned(given);
        if (!output_ || output_->layout() != frame.layout || output_->width() != width || output_->height() != height)
            output_.emplace(frame.layout, width, height);
        WritableFrame result = output_->take();
        for (std::size_t plane = 0; plane < result.planes.size(); ++plane)
            scalePlane(frame, rect, plane, result);
        return result.frame;
    }

private:
    struct PlaneGraph {
        std::optional<GraphKey> key;
        GraphPtr graph;
    };

    void scalePlane(const VideoFrame& frame, const PictureRect& rect, std::size_t plane, WritableFrame& result) {
        const int width = result.frame.width;
        const int height = result.frame.height;
        const GraphKey key{planeWidth(frame.layout, frame.width, plane),
                           planeHeight(frame.layout, frame.height, plane),
                           planeWidth(frame.layout, width, plane),
                           planeHeight(frame.layout, height, plane),
                           frame.layout.bitDepth,
                           planeRect(frame.layout, plane, rect, width, height)};
        // Both chroma planes share a graph, and so do frames while the rectangle stands still.
        PlaneGraph& cached = graphs_[plane == 0 ? 0 : 1];
        if (cached.key != key) {
            cached.graph = buildGraph(key);
            cached.key = key;
        }
        if (!cached.graph) throw FlowtideError::writerFailed(scalerFailure);
        zimg_image_buffer_const source{};
        source.version = ZIMG_API_VERSION;
        source.plane[0].data = frame.planes[plane].data;
        source.plane[0].stride = frame.planes[plane].stride;
        source.plane[0].mask = ZIMG_BUFFER_MAX;
        zimg_image_buffer target{};
        target.version = ZIMG_API_VERSION;
        target.plane[0].data = result.planes[plane];
        target.plane[0].stride = result.frame.planes[plane].stride;
        target.plane[0].mask = ZIMG_BUFFER_MAX;
        if (zimg_filter_graph_process(cached.graph.get(), &source, &target, scratchFor(*cached.graph), nullptr, nullptr,
                                      nullptr, nullptr) != ZIMG_ERROR_SUCCESS)
            throw FlowtideError::writerFailed(scalerFailure);
    }

    void* scratchFor(const zimg_filter_graph& graph) {
        std::size_t size = 0;
        if (zimg_filter_graph_get_tmp_size(&graph, &size) != ZIMG_ERROR_SUCCESS)
            throw FlowtideError::writerFailed(scalerFailure);
        if (size > scratchSize_) {
            scratch_ = alignedBytes(size);
            scratchSize_ = size;
        }
        return scratch_.get();
    }

    /// The frame itself, or a copy where its planes begin in the middle of a vector.
    VideoFrame aligned(const VideoFrame& frame) {
        bool every = true;
        for (const auto& plane : frame.planes)
            every = every && isAligned(plane);
        if (every) return frame;
        if (!input_ || input_->layout() != frame.layout || input_->width() != frame.width ||
            input_->height() != frame.height)
            input_.emplace(frame.layout, frame.width, frame.height);
        WritableFrame copy = input_->take();
        for (std::size_t plane = 0; plane < copy.planes.size(); ++plane) {
            const std::size_t bytes = planeRowBytes(frame.layout, frame.width, plane);
            for (int row = 0; row < planeHeight(frame.layout, frame.height, plane); ++row)
                std::memcpy(copy.planes[plane] + row * copy.frame.planes[plane].stride,
                            frame.planes[plane].data + row * frame.planes[plane].stride, bytes);
        }
        return copy.frame;
    }

    std::optional<FramePool> input_;
    std::optional<FramePool> output_;
    std::array<PlaneGraph, 2> graphs_;
    AlignedBytes scratch_;
    std::size_t scratchSize_ = 0;
};

ZoomScaler::ZoomScaler()
    : implementation_(std::make_unique<Implementation>()) {}
ZoomScaler::~ZoomScaler() = default;

VideoFrame ZoomScaler::scale(const VideoFrame& frame, const PictureRect& rect, int width, int height) {
    return implementation_->scale(frame, rect, width, height);
}

} // namespace flowtide
