// What the viewer tells of itself to those who do not see it.
#pragma once

namespace flowtide {

class VideoSurface;

/// Makes surfaces known as pictures whose value says what lies on them.
void installSurfaceAccessible();
/// The value has changed by the user's keys.
void announceSurfaceValue(VideoSurface& surface);

} // namespace flowtide
