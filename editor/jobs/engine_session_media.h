// A session's long operations on the engines of the media layer.
#pragma once

#include "editor/jobs/session_media.h"
#include "media/log.h"
#include "media/preview/preview_cache_files.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

namespace flowtide {

class MediaBackend;

/// Owns the folder of rendered previews, made for the first of them, and keeps the last single frame. Any thread.
class EngineSessionMedia final : public SessionMedia {
public:
    /// `items` owns proxies and previews, `log` takes what exports and proxies have to say. All must outlive this and
    /// its jobs.
    EngineSessionMedia(const MediaBackend& backend, TemporaryItems& items, LogSink log);

    ImportedClip loadClip(const std::filesystem::path& path) override;
    std::string fingerprint(const std::filesystem::path& path) override;
    ExportValidationReport exportClip(const ExportRequest& request, const std::function<void(double)>& onProgress,
                                      const CancelCheck& isCancelled) override;
    std::filesystem::path makeProxy(const ImportedClip& clip, const std::function<void(double)>& onProgress,
                                    const CancelCheck& isCancelled) override;
    std::filesystem::path renderPreview(const Uuid& id, ExportRequest request,
                                        const std::function<void(double)>& onProgress,
                                        const CancelCheck& isCancelled) override;
    void removePreview(const std::filesystem::path& file) noexcept override;
    AudioData loadSound(const ImportedClip& clip, const CancelCheck& isCancelled) override;
    SourceFrame sourceFrame(const std::shared_ptr<const ImportedClip>& clip, SourceSeconds time,
                            OutputSize maximumSize) override;
    ExportPicture exportPicture(const ExportRequest& request, OutputSeconds time, OutputSize maximumSize,
                                const CancelCheck& isCancelled) override;
    SubjectTrackResult track(const ImportedClip& clip, SourceSeconds seedTime, const SubjectBox& seedBox,
                             SourceRange range, const std::function<void(TrackingProgress)>& onProgress,
                             const CancelCheck& isCancelled) override;

private:
    std::filesystem::path previewFile(const Uuid& id);

    const MediaBackend& backend_;
    TemporaryItems& items_;
    LogSink log_;
    std::mutex previewLock_; ///< guards previewFiles_
    std::optional<PreviewCacheFiles> previewFiles_;

    /// Of the clip and the size that were asked for last.
    struct Frames {
        std::shared_ptr<const ImportedClip> clip;
        OutputSize maximumSize;
        std::unique_ptr<SourceFrameEngine> engine;
    };
    std::mutex framesLock_; ///< guards frames_
    Frames frames_;
    std::mutex exportFramesLock_; ///< guards exportFrames_
    ExportFrameEngine exportFrames_;
    std::atomic<bool> isFileNew_ = false; ///< a file has been opened since the last picture of an export
};

} // namespace flowtide
