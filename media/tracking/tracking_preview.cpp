// The tracker's planes as a frame.
#include "media/tracking/tracking_preview.h"

#include "media/video_frame.h"

namespace flowtide::tracking {

TrackingPreview::TrackingPreview(const ImportedClip& clip)
    : color_(pictureColor(clip))
    , size_(shrunkSize({clip.width, clip.height}, {SubjectPicture::longestSide, SubjectPicture::longestSide})) {}

DisplayFrame TrackingPreview::draw(const SubjectPicture& picture) {
    VideoFrame frame;
    frame.layout = {ChromaSubsampling::yuv420, 8, picture.fullRange};
    frame.width = picture.width();
    frame.height = picture.height();
    frame.planes = {{{picture.luma[0].data, picture.luma[0].stride},
                     {picture.chroma[0].data, picture.chroma[0].stride},
                     {picture.chroma[1].data, picture.chroma[1].stride}}};
    frame.owner = picture.owner;
    return converter_.convert(frame, color_, {}, size_); // it is upright already
}

} // namespace flowtide::tracking
