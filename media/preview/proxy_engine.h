// Makes small copies of clips that any frame can be shown from at once.
#pragma once

#include "media/cancel_check.h"
#include "media/export/export_request.h"
#include "media/imported_clip.h"
#include "media/log.h"
#include "media/media_io.h"
#include "media/preview/temporary_items.h"

#include <atomic>
#include <filesystem>

namespace flowtide {

/// Makes one proxy: H.264 with key frames only, each frame at the source's own time, AAC. makeProxy() blocks; cancel()
/// from any thread. Backend, items and what `warn` refers to must outlive it.
class ProxyEngine {
public:
    /// `warn` takes sentences about what the proxy lacks of the source; `isCancelled` is asked as often as cancel() is
    /// looked for, from any thread.
    ProxyEngine(const MediaBackend& backend, TemporaryItems& items, LogSink warn = {}, CancelCheck isCancelled = {});

    /// The path of the proxy, a temporary file that its items own. `onProgress` takes 0...1, from the calling thread.
    /// Throws FlowtideError::proxyFailed, or exportCancelled; no file is left then.
    std::filesystem::path makeProxy(const ImportedClip& clip, const ProgressHandler& onProgress = {});
    /// Makes the proxy under way, and any later one, end as cancelled.
    void cancel() { isCancelled_ = true; }

private:
    void tellOfDamage(int frames, int stretches) const;

    const MediaBackend& backend_;
    TemporaryItems& items_;
    LogSink warn_;
    CancelCheck cancelCheck_;
    std::atomic<bool> isCancelled_ = false;
};

} // namespace flowtide
