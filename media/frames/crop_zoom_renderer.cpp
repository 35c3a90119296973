// Where the window and the zoomed rectangle lie in a frame; a crop alone copies no pixel.
#include "media/frames/crop_zoom_renderer.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

// A weaker zoom moves no edge by a thousandth of a pixel.
constexpr double noticeableScale = 1 + 1e-7;

} // namespace

VideoFrame croppedView(const VideoFrame& frame, int left, int width, int height) {
    VideoFrame view = frame;
    view.width = width;
    view.height = height;
    for (std::size_t plane = 0; plane < view.planes.size(); ++plane) {
        const int shift = plane == 0 ? 0 : frame.layout.horizontalChromaShift();
        view.planes[plane].data += static_cast<std::ptrdiff_t>(left >> shift) * frame.layout.bytesPerSample();
    }
    return view;
}

ZoomEngine::FocalPoint encodedFocal(ZoomEngine::FocalPoint displayed, const AffineTransform& transform, double width,
                                    double height) {
    const AffineTransform& t = transform;
    const double determinant = t.a * t.d - t.b * t.c;
    if (t.isIdentity() || !(std::abs(determinant) > 1e-12)) return displayed;
    // The displayed picture is the box around the transformed one, wherever the transform puts it.
    const auto across = std::minmax({0.0, t.a * width, t.c * height, t.a * width + t.c * height});
    const auto down = std::minmax({0.0, t.b * width, t.d * height, t.b * width + t.d * height});
    const double x = across.first + displayed.x * (across.second - across.first);
    const double y = down.first + displayed.y * (down.second - down.first);
    const double encodedX = (t.d * x - t.c * y) / determinant;
    const double encodedY = (t.a * y - t.b * x) / determinant;
    return {std::clamp(encodedX / width, 0.0, 1.0), std::clamp(encodedY / height, 0.0, 1.0)};
}

VideoFrame CropZoomRenderer::render(const VideoFrame& frame, SourceSeconds time, std::int64_t index) {
    int left = 0;
    int width = frame.width;
    int height = frame.height;
    if (plan_.crop) {
        left = static_cast<int>(plan_.cropOffsets.offsetAt(time, plan_.frameDuration.seconds()));
        width = static_cast<int>(plan_.crop->width);
        height = static_cast<int>(plan_.crop->height);
    }
    const auto zoom = plan_.zooms.empty() ? ZoomEngine::ZoomState{} : plan_.zooms[static_cast<std::size_t>(index)];
    if (zoom.scale < noticeableScale) return plan_.crop ? croppedView(frame, left, width, height) : frame;

    // About the focal point: that point of the picture stays where it is.
    const auto focal = encodedFocal(zoom.focal, plan_.transform, width, height);
    const double hidden = 1 - 1 / zoom.scale;
    const PictureRect rect{left + focal.x * width * hidden, focal.y * height * hidden, width / zoom.scale,
                           height / zoom.scale};
    return scaler_.scale(frame, rect, width, height);
}

} // namespace flowtide
