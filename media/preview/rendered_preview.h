// A stretch of the clip that was rendered ahead of playback.
#pragma once

#include "core/preview_curve_signature.h"
#include "core/render_choices.h"
#include "core/time_map.h"
#include "core/uuid.h"

#include <filesystem>

namespace flowtide {

/// A rendered file and the part of it that is still good. Whether it matches the current curve is its keeper's to
/// judge, by the signature.
struct RenderedPreview {
    Uuid id;
    std::filesystem::path url;
    TimeMap timeMap;      ///< of the part that is shown; its output starts at 0
    double fileStart = 0; ///< where in the file the map's output begins, in seconds; after 0 once a preview was cut
    PreviewCurveSignature signature;
    PreviewResolution resolution = PreviewResolution::full;

    friend bool operator==(const RenderedPreview&, const RenderedPreview&) = default;
};

} // namespace flowtide
