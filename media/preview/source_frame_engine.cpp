// Decoding and drawing of single frames.
#include "media/preview/source_frame_engine.h"

#include "media/decode_layout.h"
#include "media/flowtide_error.h"

#include <new>
#include <utility>

namespace flowtide {

SourceFrameEngine::SourceFrameEngine(const MediaBackend& backend, std::shared_ptr<const ImportedClip> clip,
                                     OutputSize maximumSize)
    : backend_(backend)
    , clip_(std::move(clip))
    , size_(shrunkSize({clip_->width, clip_->height}, maximumSize))
    , color_(pictureColor(*clip_)) {}

SourceFrame SourceFrameEngine::frame(SourceSeconds time) {
    if (cached_ && cached_->asked == time) return cached_->frame;
    const auto reader = backend_.openVideo(*clip_, decodePixelFormat(*clip_), {time.value, time.value});
    const auto found = reader->next();
    if (!found) throw FlowtideError::readerFailed("There is no frame at this time.");
    try {
        DisplayFrame drawn = converter_.convert(found->frame, color_, clip_->preferredTransform, size_);
        cached_ = {{std::move(drawn), found->time}, time};
        return cached_->frame;
    } catch (const std::bad_alloc&) {
        throw FlowtideError::readerFailed("Could not allocate a source comparison frame.");
    }
}

} // namespace flowtide
