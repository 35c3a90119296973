// The life of an export: plan, render into a hidden file, verify, replace.
#include "media/export/export_engine.h"

#include "media/export/export_plan.h"
#include "media/export/export_validation.h"
#include "media/export/interleaved_render.h"
#include "media/export/temporary_export.h"
#include "media/flow/frame_renderer.h"
#include "media/flowtide_error.h"
#include "media/frames/context_reader.h"
#include "media/media_io.h"
#include "media/sound/audio_decoding.h"
#include "project/files/local_file_safety.h"
#include "project/files/project_error.h"

#include <fmt/format.h>

#include <sstream>
#include <system_error>
#include <utility>

namespace flowtide {

namespace {

std::string describe(const std::error_code& code) {
    return fmt::format("{} (error {})", code.message(), code.value());
}

/// Refuses what could never be replaced by a file, before hours of rendering.
void requireWritableDestination(const std::filesystem::path& destination) {
    std::error_code ignored;
    const auto status = std::filesystem::symlink_status(destination, ignored);
    if (destination.filename().empty() || std::filesystem::is_directory(status))
        throw FlowtideError::writerFailed("The destination is a folder. Choose a file name for the export.");
    if (std::filesystem::is_symlink(status))
        throw FlowtideError::writerFailed("The destination is a symbolic link. Choose a regular file.");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw FlowtideError::writerFailed("The destination is not a regular file. Choose another file name.");
}

/// What a slow disk has not taken yet is waited for here, before the last time that a cancel is heard.
void finishWriting(TemporaryExport& file) {
    try {
        file.finishWriting();
    } catch (const std::system_error& error) {
        throw FlowtideError::writerFailed("The movie could not be written to the disk: " + describe(error.code()));
    }
}

void replaceFinalExport(TemporaryExport& file) {
    try {
        file.moveIntoPlace();
    } catch (const std::system_error& error) {
        throw FlowtideError::writerFailed("Could not move validated export into place: " + describe(error.code()));
    } catch (const ProjectError& error) {
        throw FlowtideError::writerFailed(std::string("Could not move validated export into place: ") + error.what());
    }
}

void logCodec(const ImportedClip& clip, const VideoSettings& video, const LogSink& log) {
    log("[Export] Codec: " + codecLabel(video.codec));
    if (!video.averageBitRate) return;
    const std::string source = clip.videoEstimatedDataRate() ? fmt::format("{:.0f}bps", *clip.videoEstimatedDataRate())
                                                             : std::string("unknown");
    log(fmt::format("[Export] Video bitrate: {}bps (source: {})", *video.averageBitRate, source));
}

void logLines(const std::string& text, const LogSink& log) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        log("[Export] " + line);
}

} // namespace

ExportEngine::ExportEngine(const MediaBackend& backend, LogSink log, CancelCheck isCancelled)
    : backend_(backend)
    , log_(std::move(log))
    , cancelCheck_(std::move(isCancelled)) {}

void ExportEngine::cancel() {
    const std::scoped_lock guard(cancelLock_);
    isCancelled_ = true;
}

bool ExportEngine::isCancelled() const {
    if (cancelCheck_ && cancelCheck_()) return true;
    const std::scoped_lock guard(cancelLock_);
    return isCancelled_;
}

ExportValidationReport ExportEngine::run(const ExportRequest& wanted, const ProgressHandler& onProgress,
                                         const PlanHandler& onPlanned) {
    LocalFileSafety::requireDistinct(wanted.clip.url, wanted.outputURL);
    requireWritableDestination(wanted.outputURL);
    ExportRequest request = wanted;
    if (request.previewResolution == PreviewResolution::quick) request.clip = request.clip.previewSized();
    const ExportPlan plan = planExport(request, log_);
    if (onPlanned) onPlanned(plan);
    const auto renderer = makeRenderer(plan.interpolation, static_cast<int>(request.clip.encodedWidth()),
                                       static_cast<int>(request.clip.encodedHeight()), plan.video.layout);

    removeStaleTemporaryExports(request.outputURL);
    const auto file = [&] {
        try {
            return std::make_unique<TemporaryExport>(request.outputURL);
        } catch (const std::system_error& error) {
            throw FlowtideError::writerFailed("Failed to start writing: " + describe(error.code()));
        }
    }();
    render(request, plan, renderer.get(), *file, onProgress);
    finishWriting(*file);
    if (isCancelled()) throw FlowtideError::exportCancelled();

    ExportValidationReport report = validateOutputFile(backend_, file->path(), request.clip, plan.expected);
    log_("[Export] Verification passed: " + report.summary);
    logLines(report.details, log_);
    if (isCancelled()) throw FlowtideError::exportCancelled();
    replaceFinalExport(*file);
    return report;
}

void ExportEngine::render(const ExportRequest& request, const ExportPlan& plan, FrameInterpolating* renderer,
                          TemporaryExport& file, const ProgressHandler& onProgress) {
    const ImportedClip& clip = request.clip;
    const CancelCheck cancelCheck = [this] { return isCancelled(); };
    const auto writer = backend_.createMovie(file, clip.fileType, clip.metadata);
    writer->addVideo(plan.video);
    AudioData audio;
    if (plan.audio) {
        writer->addAudio(*plan.audio);
        audio = AudioDecoding::readAll(backend_, clip, plan.timeMap.sourceRange(), cancelCheck);
        log_(fmt::format("[Export] Audio loaded: {} samples, {:.0f} Hz, {} channels", audio.samples.size(),
                         audio.sampleRate, audio.channels));
        if (audio.damagedStretches > 0)
            log_(fmt::format("[Export] Warning: {} {} replaced by silence.", audio.damagedStretches,
                             audio.damagedStretches == 1 ? "damaged stretch of the source's sound was"
                                                         : "damaged stretches of the source's sound were"));
    }
    writer->start();
    logCodec(clip, plan.video, log_);
    const SourceRange range = plan.timeMap.sourceRange();
    const auto video = renderer ? openWithContext(backend_, clip, plan.video.layout, range, cancelCheck)
                                : backend_.openVideo(clip, plan.video.layout, range, cancelCheck);
    const RenderInputs inputs{plan, *video, renderer, plan.audio ? &audio : nullptr, *writer};
    renderInterleaved(inputs, log_, onProgress, cancelCheck);
    if (const int concealed = video->concealedFrameCount(); concealed > 0)
        log_(fmt::format("[Export] Warning: {} {} decoded approximately.", concealed,
                         concealed == 1 ? "damaged source frame was" : "damaged source frames were"));
    writer->finish();
}

} // namespace flowtide
