// Planning of an export.
#include "media/export_plan.h"

#include "core/curve_engine.h"
#include "media/flowtide_error.h"
#include "media/frame_schedule.h"

#include <fmt/format.h>

namespace flowtide {

namespace {

void logSourceMatch(const ImportedClip& clip, const LogSink& log) {
    if (!clip.videoCodecType)
        log(fmt::format("[Export] Warning: {} cannot be source-matched; an HEVC / H.265 fallback is required and may "
                        "still fail if AVFoundation cannot decode the source.",
                        clip.videoCodecDisplayName()));
    if (clip.videoHasAlpha) log("[Export] Warning: the source's alpha channel is not kept; the export is opaque.");
}

} // namespace

ExportPlan planExport(const ExportRequest& request, const LogSink& log) {
    const ImportedClip& clip = request.clip;
    ExportPlan plan;
    plan.timeMap = CurveEngine::buildTimeMap(request.keyframes, clip.duration, request.sourceRange,
                                             CurveEngine::exportTimeMapSteps, request.smoothing);
    const double outputDuration = plan.timeMap.outputDuration();
    const SourceRange range = plan.timeMap.sourceRange();
    // A rotated source stays encoded as it is and carries its transform.
    const OutputSize encodedSize{clip.encodedWidth, clip.encodedHeight};
    plan.displaySize = {clip.width, clip.height};

    log(fmt::format("[Export] Source duration: {:.3f}s, Output duration: {:.3f}s", clip.duration, outputDuration));
    log(fmt::format("[Export] Source range: {:.6f}:{:.6f}", range.lower, range.upper));
    log(fmt::format("[Export] Resolution: {}x{}", plan.displaySize.width, plan.displaySize.height));
    log(fmt::format("[Export] Container: {}", fileTypeName(clip.fileType)));
    logSourceMatch(clip, log);
    if (request.verticalCrop) throw FlowtideError::compositionFailed("Vertical crop is not available in this version.");
    if (request.zoom && !request.zoom->blocks.empty())
        throw FlowtideError::compositionFailed("Zoom blocks are not available in this version.");

    plan.opticalFlowRanges = OpticalFlowScope::normalized(request.opticalFlowRanges.value_or(SourceRanges{}), range);
    plan.interpolation = plan.opticalFlowRanges.empty() ? FrameInterpolation::nearest : request.interpolation;
    log(fmt::format("[Export] Frame rendering: {} · {} source ranges", displayName(plan.interpolation),
                    plan.opticalFlowRanges.size()));

    plan.frameCount = outputFrameCount(outputDuration, clip.frameDuration);
    plan.video = videoSettings(clip, outputCodec(clip), encodedSize, outputDuration);
    if (clip.hasAudio) plan.audio = audioSettings(clip, clip.fileType);
    if (const auto& tags = clip.videoColorProperties; tags && !tags->complete())
        log(fmt::format("[Export] Source has incomplete color tags ({}); validating encoder-inferred tags after render",
                        fmt::join(presentColorTagNames(*tags), ", ")));
    return plan;
}

} // namespace flowtide
