// Hands the operations on.
#include "editor/jobs/engine_session_media.h"

#include "editor/jobs/tracking_reporter.h"
#include "media/export/export_engine.h"
#include "media/preview/proxy_engine.h"
#include "media/tracking/subject_tracking_engine.h"
#include "project/clip_fingerprint.h"

#include <chrono>
#include <string_view>
#include <utility>

namespace flowtide {

namespace {

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

EngineSessionMedia::EngineSessionMedia(const MediaBackend& backend, TemporaryItems& items, LogSink log)
    : backend_(backend)
    , items_(items)
    , log_(std::move(log))
    , exportFrames_(backend) {}

ImportedClip EngineSessionMedia::loadClip(const std::filesystem::path& path) {
    isFileNew_ = true;
    return ImportedClip::load(backend_, path);
}

std::string EngineSessionMedia::fingerprint(const std::filesystem::path& path) {
    return clipFingerprint(path);
}

ExportValidationReport EngineSessionMedia::exportClip(const ExportRequest& request,
                                                      const std::function<void(double)>& onProgress,
                                                      const CancelCheck& isCancelled) {
    throwIfCancelled(isCancelled);
    return ExportEngine(backend_, log_, isCancelled).run(request, onProgress);
}

std::filesystem::path EngineSessionMedia::makeProxy(const ImportedClip& clip,
                                                    const std::function<void(double)>& onProgress,
                                                    const CancelCheck& isCancelled) {
    throwIfCancelled(isCancelled);
    return ProxyEngine(backend_, items_, log_, isCancelled).makeProxy(clip, onProgress);
}

std::filesystem::path EngineSessionMedia::previewFile(const Uuid& id) {
    const std::scoped_lock guard(previewLock_);
    if (!previewFiles_) previewFiles_.emplace(items_);
    return previewFiles_->url(id);
}

std::filesystem::path EngineSessionMedia::renderPreview(const Uuid& id, ExportRequest request,
                                                        const std::function<void(double)>& onProgress,
                                                        const CancelCheck& isCancelled) {
    throwIfCancelled(isCancelled);
    request.outputURL = previewFile(id);
    const LogSink silent = [](std::string_view) {}; // nobody has asked for these
    ExportEngine(backend_, silent, isCancelled).run(request, onProgress);
    return request.outputURL;
}

void EngineSessionMedia::removePreview(const std::filesystem::path& file) noexcept {
    items_.operations().remove(file);
}

AudioData EngineSessionMedia::loadSound(const ImportedClip& clip, const CancelCheck& isCancelled) {
    return AudioDecoding::readAll(backend_, clip, {0, clip.duration}, isCancelled);
}

SourceFrame EngineSessionMedia::sourceFrame(const std::shared_ptr<const ImportedClip>& clip, SourceSeconds time,
                                            OutputSize maximumSize) {
    const std::scoped_lock guard(framesLock_);
    if (frames_.clip != clip || frames_.maximumSize != maximumSize)
        frames_ = {clip, maximumSize, std::make_unique<SourceFrameEngine>(backend_, clip, maximumSize)};
    return frames_.engine->frame(time);
}

ExportPicture EngineSessionMedia::exportPicture(const ExportRequest& request, OutputSeconds time,
                                                OutputSize maximumSize, const CancelCheck& isCancelled) {
    const std::scoped_lock guard(exportFramesLock_);
    if (isFileNew_.exchange(false)) exportFrames_.closeClip();
    return exportFrames_.picture(request, time, maximumSize, isCancelled);
}

SubjectTrackResult EngineSessionMedia::track(const ImportedClip& clip, SourceSeconds seedTime,
                                             const SubjectBox& seedBox, SourceRange range,
                                             const std::function<void(TrackingProgress)>& onProgress,
                                             const CancelCheck& isCancelled) {
    TrackingReporter reporter(clip, onProgress, steadySeconds);
    SubjectTrackingCallbacks callbacks = reporter.callbacks();
    callbacks.isCancelled = isCancelled;
    return SubjectTrackingEngine(backend_).track(clip, seedTime, seedBox, range, callbacks);
}

} // namespace flowtide
