// From a request to everything that the render and the verification need to know.
#include "media/export/export_plan.h"

#include "core/curve_engine.h"
#include "media/export/export_prediction.h"
#include "media/export/export_warnings.h"
#include "media/flowtide_error.h"
#include "media/frames/context_reader.h"
#include "media/frames/frame_interpolation.h"
#include "media/media_time.h"

#include <fmt/format.h>

#include <string>

namespace flowtide {

namespace {

std::optional<CropPlan> planCrop(const ExportRequest& request) {
    if (!request.verticalCrop) return std::nullopt;
    if (!request.clip.preferredTransform.isIdentity())
        throw FlowtideError::compositionFailed("Vertical crop export currently requires an unrotated source clip.");
    return CropPlan::forSource({request.clip.width, request.clip.height}, *request.verticalCrop,
                               request.clip.metadata.sampleAspectRatio.seconds());
}

FramingPlan planFraming(const ExportRequest& request, const std::optional<CropPlan>& crop, const TimeMap& timeMap,
                        std::int64_t frameCount) {
    const double frameDuration = request.clip.frameDuration.seconds();
    FramingPlan framing;
    framing.crop = crop;
    framing.frameDuration = request.clip.frameDuration;
    framing.transform = request.clip.preferredTransform;
    if (crop) framing.cropOffsets = crop->cropXBySourceFrame(timeMap, frameDuration);
    if (request.zoom && !request.zoom->blocks.empty())
        framing.zooms = request.previewOf ? ZoomEngine::table(request.zoom->blocks, request.previewOf->timeMap,
                                                              frameCount, frameDuration, request.previewOf->firstFrame)
                                          : ZoomEngine::table(request.zoom->blocks, timeMap, frameCount, frameDuration);
    return framing;
}

void logCrop(const ExportRequest& request, const std::optional<CropPlan>& crop, const LogSink& log) {
    if (crop)
        log(fmt::format("[Export] Vertical crop: {}x{}", crop->width, crop->height));
    else if (request.verticalCrop)
        log(fmt::format("[Export] Vertical crop skipped — source ({}x{}) is not wider than the crop frame",
                        request.clip.width, request.clip.height));
}

} // namespace

ExportPlan planExport(const ExportRequest& request, const LogSink& log) {
    const ImportedClip& clip = request.clip;
    ExportPlan plan;
    plan.timeMap = request.previewTimeMap
                       ? *request.previewTimeMap
                       : CurveEngine::buildTimeMap(request.keyframes, clip.duration, request.sourceRange,
                                                   CurveEngine::exportTimeMapSteps, request.smoothing);
    const double outputDuration = plan.timeMap.outputDuration();
    const SourceRange range = plan.timeMap.sourceRange();
    const std::optional<CropPlan> crop = planCrop(request);
    // A rotated source stays encoded as it is and carries its transform.
    const OutputSize encodedSize =
        crop ? OutputSize{crop->width, crop->height} : OutputSize{clip.encodedWidth(), clip.encodedHeight()};
    const OutputSize displaySize = crop ? encodedSize : OutputSize{clip.width, clip.height};

    log(fmt::format("[Export] Source duration: {:.3f}s, Output duration: {:.3f}s", clip.duration, outputDuration));
    log(fmt::format("[Export] Source range: {:.6f}:{:.6f}", range.lower, range.upper));
    log(fmt::format("[Export] Resolution: {}x{}", displaySize.width, displaySize.height));
    log(fmt::format("[Export] Container: {}", fileTypeName(clip.fileType)));
    plan.video = videoSettings(clip, outputCodec(clip), encodedSize, outputDuration);
    if (clip.hasAudio()) plan.audio = audioSettings(clip, clip.fileType);
    for (const std::string& warning : exportWarnings(clip, plan.video, plan.audio))
        log("[Export] Warning: " + warning);
    logCrop(request, crop, log);

    plan.opticalFlowRanges = OpticalFlowScope::normalized(request.opticalFlowRanges, range);
    plan.contextReachSeconds = contextReach(clip);
    plan.interpolation = plan.opticalFlowRanges.empty() ? FrameInterpolation::nearest : request.interpolation;
    log(fmt::format("[Export] Frame rendering: {} · {} source ranges", displayName(plan.interpolation),
                    plan.opticalFlowRanges.size()));

    plan.frameCount = outputFrameCount(outputDuration, clip.frameDuration);
    plan.framing = planFraming(request, crop, plan.timeMap, plan.frameCount);
    if (const auto& tags = clip.videoColorProperties(); tags && !tags->complete())
        log(fmt::format("[Export] Source has incomplete color tags ({}); validating encoder-inferred tags after render",
                        fmt::join(presentColorTagNames(*tags), ", ")));

    plan.expected = {plan.video.codec, encodedSize,  displaySize, outputDuration, range,
                     crop.has_value(), clip.fileType};
    const ImportedClip predicted = predictedOutput(plan.video, plan.audio, displaySize, plan.frameCount, clip.fileType);
    validateOutput(predicted, clip, plan.expected);
    return plan;
}

} // namespace flowtide
