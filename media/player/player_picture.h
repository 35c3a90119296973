// A picture as a player shows it.
#pragma once

#include "core/output_size.h"
#include "core/time.h"
#include "media/frames/display_color.h"
#include "media/orientation.h"
#include "media/player/frame_cache.h"
#include "media/video_frame.h"

namespace flowtide {

struct PlayerPicture {
    VideoFrame frame;
    PictureColor color;          ///< a proxy has that of its clip
    AffineTransform orientation; ///< how the frame is turned upright
    OutputSize size;             ///< of the clip, upright, in pixels; a proxy has fewer
    OutputSeconds time;          ///< the output time for which it is shown
    MediumId medium = 0;
    double fileTime = 0;     ///< its own, in seconds of the medium's file
    bool isDue = false;      ///< it is the frame of that time, not one shown until that comes
    bool isExact = false;    ///< it is due, and no proxy's
    bool isRendered = false; ///< of a rendered preview, as it will be exported but for the crop: zoomed already

    bool hasSameFrame(const PlayerPicture& other) const { return medium == other.medium && fileTime == other.fileTime; }
};

} // namespace flowtide
