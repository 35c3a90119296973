// Opens a reader so widely around a range that its frames have the neighbours that they have in the whole clip.
#pragma once

#include "core/time.h"
#include "media/cancel_check.h"
#include "media/imported_clip.h"
#include "media/media_io.h"

#include <memory>
#include <optional>

namespace flowtide {

/// How far from a source time the frame before the one shown there, and the frame after the next, can lie, in seconds:
/// at least two frame intervals. Nothing for a track whose frames come at no constant pace: there it can be anywhere.
std::optional<double> contextReach(const ImportedClip& clip);

/// A reader of a range that also delivers, where the source has them, the frame before the one shown at the range's
/// start and the second one after its end. A frame rendered in the range alone then has the context that it has in a
/// longer one.
std::unique_ptr<VideoReader> openWithContext(const MediaBackend& backend, const ImportedClip& clip, PixelLayout layout,
                                             SourceRange range, const CancelCheck& isCancelled = {});

} // namespace flowtide
