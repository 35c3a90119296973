// The rules, each as a condition that NaN fails.
#include "project/project_validation.h"

#include "core/crop_framing.h"
#include "core/distinct_ids.h"
#include "core/time.h"
#include "project/files/project_error.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace flowtide {
namespace {

void require(bool holds, const char* sentence) {
    if (!holds) throw ProjectError::invalid(sentence);
}

/// Bounds included; false for NaN, and for infinities since every bound is finite.
bool within(double value, double lower, double upper) {
    return value >= lower && value <= upper;
}

bool isFraction(double value) {
    return within(value, 0, 1);
}

bool isPositiveDuration(double duration) {
    return std::isfinite(duration) && duration > 0;
}

bool isCurve(const SpeedKeyframes& keyframes, double duration, double lowest, double highest) {
    return !keyframes.empty() && keyframes.size() <= mostKeyframes && haveDistinctIDs(keyframes) &&
           std::all_of(keyframes.begin(), keyframes.end(), [&](const SpeedKeyframe& keyframe) {
               return within(keyframe.time, 0, duration) && within(keyframe.speed, lowest, highest);
           });
}

bool isPreviewRange(const std::optional<double>& start, const std::optional<double>& end, double duration) {
    if (!start || !end) return !start && !end;
    return within(*start, 0, duration) && within(*end, *start, duration);
}

bool isZoomBlock(const ZoomBlock& block, double duration) {
    return within(block.startTime, 0, duration) && within(block.endTime, 0, duration) &&
           block.startTime < block.endTime && within(block.amount, lowestZoomAmount, highestZoomAmount) &&
           within(block.rampDuration, 0, longestZoomRamp) && isFraction(block.focalX) && isFraction(block.focalY) &&
           block.focalKeyframes.size() <= mostFocalKeyframes &&
           std::all_of(block.focalKeyframes.begin(), block.focalKeyframes.end(), [](const ZoomFocalKeyframe& keyframe) {
               return isFraction(keyframe.progress) && isFraction(keyframe.x) && isFraction(keyframe.y);
           });
}

bool areZoomBlocks(const std::vector<ZoomBlock>& blocks, double duration) {
    return blocks.size() <= mostZoomBlocks && haveDistinctIDs(blocks) &&
           std::all_of(blocks.begin(), blocks.end(),
                       [&](const ZoomBlock& block) { return isZoomBlock(block, duration); });
}

bool areEditValues(const ProjectEdits& edits, double duration) {
    return within(edits.trimStart, 0, duration) && within(edits.trimEnd, 0, duration) &&
           edits.trimStart < edits.trimEnd && isFraction(edits.smoothing) && isFraction(edits.centerSmoothing) &&
           isCurve(edits.keyframes, duration, lowestSpeed, highestSpeed) &&
           isCurve(edits.centerKeyframes, duration, leftmostCrop, rightmostCrop) && isFraction(edits.playhead) &&
           within(edits.timelineZoom, 1, largestTimelineZoom) && isFraction(edits.timelineCenter) &&
           isPreviewRange(edits.previewStart, edits.previewEnd, duration) && areZoomBlocks(edits.zoomBlocks, duration);
}

template <typename Range>
bool isRange(const Range& range, double duration) {
    return within(range.start, 0, duration) && within(range.end, 0, duration) && range.start < range.end;
}

bool areRanges(const std::vector<OpticalFlowRange>& ranges, double duration) {
    return ranges.size() <= mostRanges &&
           std::all_of(ranges.begin(), ranges.end(), [&](const auto& range) { return isRange(range, duration); });
}

bool areOpticalFlowRanges(const std::vector<OpticalFlowRange>& ranges, const std::optional<Uuid>& selected,
                          double duration) {
    return areRanges(ranges, duration) && haveDistinctIDs(ranges) &&
           (!selected ||
            std::any_of(ranges.begin(), ranges.end(), [&](const auto& range) { return range.id == *selected; }));
}

bool areTrackedRanges(const std::vector<SubjectTrackingRange>& ranges, double duration) {
    return ranges.size() <= mostTrackingRanges && haveDistinctIDs(ranges) &&
           std::all_of(ranges.begin(), ranges.end(), [&](const SubjectTrackingRange& range) {
               return isRange(range, duration) && within(range.lastFrameTime, range.start, range.end);
           });
}

bool overlap(const std::vector<ZoomBlock>& blocks) {
    std::vector<SourceRange> spans;
    spans.reserve(blocks.size());
    for (const ZoomBlock& block : blocks)
        spans.push_back({block.startTime, block.endTime});
    std::sort(spans.begin(), spans.end(), [](const auto& a, const auto& b) { return a.lower < b.lower; });
    return std::adjacent_find(spans.begin(), spans.end(),
                              [](const auto& a, const auto& b) { return b.lower < a.upper; }) != spans.end();
}

} // namespace

void validate(const FlowtideProject& project) {
    require(project.version == FlowtideProject::currentVersion,
            "This project requires a different version of Loftwell Video.");
    const ClipReference& source = project.source;
    require(isPositiveDuration(source.duration) && source.url.filePath() && !source.fingerprint.empty(),
            "The project's source reference is invalid.");
    validate(project.edits, source.duration);
}

void validate(const ProjectEdits& edits, double duration) {
    require(isPositiveDuration(duration), "The project duration is invalid.");
    require(areEditValues(edits, duration), "The project contains invalid edit values.");
    require(!edits.originalFrameRanges || areRanges(*edits.originalFrameRanges, duration),
            "The project's original-frame ranges are invalid.");
    require(!edits.opticalFlowRanges ||
                areOpticalFlowRanges(*edits.opticalFlowRanges, edits.selectedOpticalFlowRangeID, duration),
            "The project's Optical Flow ranges are invalid.");
    require(!edits.trackedRanges || areTrackedRanges(*edits.trackedRanges, duration),
            "The project's tracked ranges are invalid.");
    require(!overlap(edits.zoomBlocks), "The project's zoom blocks overlap.");
}

} // namespace flowtide
