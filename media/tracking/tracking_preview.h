// What a tracker looks at, for a display.
#pragma once

#include "media/frames/display_frame.h"
#include "media/imported_clip.h"
#include "media/tracking/subject_picture.h"

namespace flowtide::tracking {

/// Draws the pictures of one clip's tracking. They are smaller than the clip's, and cost no decoding of their own. One
/// thread at a time.
class TrackingPreview {
public:
    explicit TrackingPreview(const ImportedClip& clip);

    /// Upright, in the display's pixels and the clip's proportions. Throws what DisplayConverter::convert() throws.
    DisplayFrame draw(const SubjectPicture& picture);

private:
    PictureColor color_;
    OutputSize size_;
    DisplayConverter converter_;
};

} // namespace flowtide::tracking
