// A session's long operations on the engines of the media layer.
#pragma once

#include "editor/jobs/session_media.h"
#include "media/log.h"

namespace flowtide {

class MediaBackend;
class TemporaryItems;

/// Without state of its own; any thread.
class EngineSessionMedia final : public SessionMedia {
public:
    /// `items` owns the proxies, `log` takes what exports and proxies have to say. All must outlive this and its jobs.
    EngineSessionMedia(const MediaBackend& backend, TemporaryItems& items, LogSink log);

    ImportedClip loadClip(const std::filesystem::path& path) override;
    std::string fingerprint(const std::filesystem::path& path) override;
    ExportValidationReport exportClip(const ExportRequest& request, const std::function<void(double)>& onProgress,
                                      const CancelCheck& isCancelled) override;
    std::filesystem::path makeProxy(const ImportedClip& clip, const std::function<void(double)>& onProgress,
                                    const CancelCheck& isCancelled) override;
    SubjectTrackResult track(const ImportedClip& clip, SourceSeconds seedTime, const SubjectBox& seedBox,
                             SourceRange range, const std::function<void(TrackingProgress)>& onProgress,
                             const CancelCheck& isCancelled) override;

private:
    const MediaBackend& backend_;
    TemporaryItems& items_;
    LogSink log_;
};

} // namespace flowtide
