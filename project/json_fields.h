// What records are made of in JSON text, listed once for reading and writing: the keys of each, and the values of the
// enumerations, which are stored by name (rawValue).
#pragma once

#include "project/flowtide_project.h"
#include "project/recent_project.h"

#include <array>
#include <concepts>
#include <type_traits>

namespace flowtide::json {

/// `Type`, const or not.
template <typename Type, typename Record>
concept Is = std::same_as<std::remove_const_t<Type>, Record>;

// describe(record, visit) calls visit(key, field) for each field.

void describe(Is<SpeedKeyframe> auto& keyframe, auto&& visit) {
    visit("id", keyframe.id);
    visit("role", keyframe.role);
    visit("speed", keyframe.speed);
    visit("time", keyframe.time);
}

void describe(Is<ZoomFocalKeyframe> auto& keyframe, auto&& visit) {
    visit("progress", keyframe.progress);
    visit("x", keyframe.x);
    visit("y", keyframe.y);
}

void describe(Is<ZoomBlock> auto& block, auto&& visit) {
    visit("amount", block.amount);
    visit("endTime", block.endTime);
    visit("focalKeyframes", block.focalKeyframes);
    visit("focalX", block.focalX);
    visit("focalY", block.focalY);
    visit("id", block.id);
    visit("mode", block.mode);
    visit("rampDuration", block.rampDuration);
    visit("startTime", block.startTime);
}

void describe(Is<OpticalFlowRange> auto& range, auto&& visit) {
    visit("end", range.end);
    visit("id", range.id);
    visit("start", range.start);
}

void describe(Is<SubjectTrackingRange> auto& range, auto&& visit) {
    visit("end", range.end);
    visit("id", range.id);
    visit("lastFrameTime", range.lastFrameTime);
    visit("lostAfter", range.lostAfter);
    visit("lostBefore", range.lostBefore);
    visit("start", range.start);
}

void describe(Is<ProjectEdits> auto& edits, auto&& visit) {
    visit("centerKeyframes", edits.centerKeyframes);
    visit("centerSmoothing", edits.centerSmoothing);
    visit("cropAspect", edits.cropAspect);
    visit("cropEnabled", edits.cropEnabled);
    visit("interpolation", edits.interpolation);
    visit("keyframes", edits.keyframes);
    visit("lockCropCenter", edits.lockCropCenter);
    visit("loopPreview", edits.loopPreview);
    visit("opticalFlowRanges", edits.opticalFlowRanges);
    visit("originalFrameRanges", edits.originalFrameRanges);
    visit("playhead", edits.playhead);
    visit("previewEnd", edits.previewEnd);
    visit("previewResolution", edits.previewResolution);
    visit("previewStart", edits.previewStart);
    visit("selectedOpticalFlowRangeID", edits.selectedOpticalFlowRangeID);
    visit("smartCache", edits.smartCache);
    visit("smoothing", edits.smoothing);
    visit("timelineCenter", edits.timelineCenter);
    visit("timelineZoom", edits.timelineZoom);
    visit("trackedRanges", edits.trackedRanges);
    visit("trimEnd", edits.trimEnd);
    visit("trimStart", edits.trimStart);
    visit("zoomBlocks", edits.zoomBlocks);
}

void describe(Is<ClipReference> auto& source, auto&& visit) {
    visit("bookmark", source.bookmark);
    visit("duration", source.duration);
    visit("fingerprint", source.fingerprint);
    visit("url", source.url);
}

void describe(Is<FlowtideProject> auto& project, auto&& visit) {
    visit("edits", project.edits);
    visit("id", project.id);
    visit("savedAt", project.savedAt);
    visit("source", project.source);
    visit("version", project.version);
}

void describe(Is<RecentProject> auto& recent, auto&& visit) {
    visit("fingerprint", recent.fingerprint);
    visit("id", recent.id);
    visit("name", recent.name);
    visit("projectURL", recent.projectURL);
    visit("savedAt", recent.savedAt);
}

// allCases(any): every value of an enumeration.

constexpr auto allCases(SpeedKeyframeRole) {
    return std::array{SpeedKeyframeRole::curve, SpeedKeyframeRole::trimStart, SpeedKeyframeRole::trimEnd};
}
constexpr auto allCases(CropAspectRatio) {
    return std::array{CropAspectRatio::nineBySixteen, CropAspectRatio::square, CropAspectRatio::fourByFive};
}
constexpr auto allCases(ZoomMode) {
    return std::array{ZoomMode::inOut, ZoomMode::zoomIn, ZoomMode::zoomOut, ZoomMode::constant};
}
constexpr auto allCases(FrameInterpolation) {
    return std::array{FrameInterpolation::opticalFlow, FrameInterpolation::nearest};
}
constexpr auto allCases(PreviewResolution) {
    return std::array{PreviewResolution::quick, PreviewResolution::full};
}

} // namespace flowtide::json
