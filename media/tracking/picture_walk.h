// Pictures of a clip in the order in which tracking goes through them.
#pragma once

#include "core/time.h"
#include "media/cancel_check.h"
#include "media/media_io.h"
#include "media/tracking/subject_picture.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace flowtide::tracking {

struct TimedPicture {
    SubjectPicture picture;
    double time = 0; ///< source seconds
};

/// Pictures one after the other, on one thread. Failures are FlowtideErrors with a tracking user's sentence.
class PictureWalk {
public:
    virtual ~PictureWalk() = default;
    /// Nothing at the end.
    virtual std::optional<TimedPicture> next() = 0;
};

/// What walks read from.
struct PictureSource {
    const MediaBackend& backend;
    const ImportedClip& clip;
    CancelCheck isCancelled;
};

constexpr const char* cannotDecode = "Could not decode tracking frames.";
constexpr const char* stoppedDecoding = "Tracking stopped because the video could not be decoded.";

/// The frames shown in a range, the first one's time being `earliest` at the earliest; absent: the range's start.
/// Frames that cannot be decoded make it fail with `cannotDecode` before the first picture, and with `stoppedDecoding`
/// after it.
std::unique_ptr<PictureWalk> walkForwards(const PictureSource& source, SourceRange range,
                                          std::optional<double> earliest = {});

/// The same frames backwards, without those that begin at the range's end. Decodes stretches of the range forwards and
/// keeps one stretch's pictures, some 60 MB. Fails with `stoppedDecoding`.
std::unique_ptr<PictureWalk> walkBackwards(const PictureSource& source, SourceRange range);

} // namespace flowtide::tracking
