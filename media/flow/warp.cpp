// Hands each plane to the warping kernel, with the siting of its samples.
#include "media/flow/warp.h"

namespace flowtide::flow {

namespace {

PlaneView planeOf(const VideoFrame& frame, std::size_t plane) {
    return {frame.planes[plane].data,
            frame.planes[plane].stride,
            planeWidth(frame.layout, frame.width, plane),
            planeHeight(frame.layout, frame.height, plane),
            frame.layout.bytesPerSample(),
            frame.layout.bitDepth};
}

} // namespace

VideoFrame warped(const VideoFrame& first, const VideoFrame& second, PhaseField& field, double phase, FramePool& pool,
                  const Kernels& kernels, WorkerPool& workers) {
    WritableFrame result = pool.take();
    for (std::size_t plane = 0; plane < result.planes.size(); ++plane) {
        const bool isChroma = plane > 0;
        const PlaneWarp warp{planeOf(first, plane),
                             planeOf(second, plane),
                             field.planes(),
                             static_cast<float>(phase),
                             isChroma && first.layout.horizontalChromaShift() > 0,
                             isChroma && first.layout.verticalChromaShift() > 0,
                             result.planes[plane],
                             result.frame.planes[plane].stride};
        workers.runBands(warp.first.height, [&](int begin, int end) {
            std::vector<float> scratch(warpScratchSize(warp.field.width));
            kernels.warp(warp, scratch.data(), begin, end);
        });
    }
    return result.frame;
}

} // namespace flowtide::flow
