// The zoom scaler, a plane at a time.
#include "media/frames/zoom_scaler.h"

#include "media/flowtide_error.h"

namespace flowtide {

VideoFrame ZoomScaler::scale(const VideoFrame& frame, const PictureRect& rect, int width, int height) {
    const PixelLayout layout = frame.layout;
    if (!output_ || output_->layout() != layout || output_->width() != width || output_->height() != height)
        output_.emplace(layout, width, height);
    WritableFrame result = output_->take();
    for (std::size_t plane = 0; plane < result.planes.size(); ++plane) {
        const PlaneSamples source{frame.planes[plane].data, frame.planes[plane].stride,
                                  planeWidth(layout, frame.width, plane), planeHeight(layout, frame.height, plane),
                                  layout.bitDepth};
        const WritablePlane target{result.planes[plane], result.frame.planes[plane].stride,
                                   planeWidth(layout, width, plane), planeHeight(layout, height, plane),
                                   layout.bitDepth};
        if (!resamplers_[plane == 0 ? 0 : 1].resample(source, sitedRect(layout, rect, layout, width, height, plane),
                                                      ResampleFilter::lanczos, target))
            throw FlowtideError::writerFailed("Could not allocate a zoom output buffer");
    }
    return result.frame;
}

} // namespace flowtide
