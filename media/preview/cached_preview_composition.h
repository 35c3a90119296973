// Lays rendered previews over a composition.
#pragma once

#include "media/preview/rendered_preview.h"
#include "media/preview/retimed_composition.h"

#include <span>

namespace flowtide::CachedPreviewComposition {

/// The composition with each preview shown over the output range of its source range. The pictures stay with the base's
/// map. Where previews overlap, the one that begins first is shown to its end. Throws FlowtideError::compositionFailed.
RetimedMedia build(RetimedMedia base, std::span<const RenderedPreview> previews);

} // namespace flowtide::CachedPreviewComposition
