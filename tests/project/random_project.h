// Random project documents that obey every rule, the same on every run.
#pragma once

#include "project/flowtide_project.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace flowtide::test {

class RandomProjects {
public:
    explicit RandomProjects(std::uint32_t seed)
        : engine_(seed) {}

    /// Every bit of the fraction is random; the bounds themselves, subnormals and negative zero occur too.
    double between(double lower, double upper) {
        switch (engine_() % 16) {
        case 0:
            return lower;
        case 1:
            return upper;
        case 2:
            return lower == 0 ? std::numeric_limits<double>::denorm_min() : lower;
        case 3:
            return lower == 0 ? -0.0 : upper;
        default: {
            const auto bits = (std::uint64_t{engine_()} << 32 | engine_()) >> 11;
            return std::clamp(lower + (upper - lower) * std::ldexp(static_cast<double>(bits), -53), lower, upper);
        }
        }
    }
    bool flag() { return engine_() % 2 == 0; }
    std::size_t below(std::size_t limit) { return engine_() % limit; }

    Uuid uuid() {
        Uuid id;
        for (auto& byte : id.bytes)
            byte = static_cast<std::uint8_t>(engine_());
        return id;
    }

    SpeedKeyframes curve(std::size_t count, double duration, double lowest, double highest) {
        SpeedKeyframes keyframes;
        for (std::size_t i = 0; i < count; ++i)
            keyframes.push_back(
                {uuid(), between(0, duration), between(lowest, highest), static_cast<SpeedKeyframeRole>(below(3))});
        return keyframes;
    }

    /// Touching blocks of equal length, in any order.
    std::vector<ZoomBlock> zoomBlocks(std::size_t count, double duration, std::size_t focalKeyframes) {
        std::vector<ZoomBlock> blocks;
        for (std::size_t i = 0; i < count; ++i) {
            const auto at = [&](std::size_t index) {
                return std::min(duration, duration * static_cast<double>(index) / static_cast<double>(count));
            };
            ZoomBlock block{uuid(),
                            at(i),
                            at(i + 1),
                            between(1.1, 4),
                            between(0, 3),
                            between(0, 1),
                            between(0, 1),
                            {},
                            static_cast<ZoomMode>(below(4))};
            for (std::size_t k = 0; k < focalKeyframes; ++k)
                block.focalKeyframes.push_back({between(0, 1), between(0, 1), between(0, 1)});
            blocks.push_back(block);
        }
        std::shuffle(blocks.begin(), blocks.end(), engine_);
        return blocks;
    }

    std::vector<OpticalFlowRange> ranges(std::size_t count, double duration) {
        std::vector<OpticalFlowRange> result;
        for (std::size_t i = 0; i < count; ++i)
            result.push_back({uuid(), between(0, duration / 4), between(duration / 2, duration)});
        return result;
    }

    std::vector<SubjectTrackingRange> trackedRanges(std::size_t count, double duration) {
        std::vector<SubjectTrackingRange> result;
        for (const OpticalFlowRange& range : ranges(count, duration))
            result.push_back({range.id, range.start, range.end, flag(), flag(), between(range.start, range.end)});
        return result;
    }

    FlowtideProject project() {
        const double duration = 1 + between(0, 10'000);
        FlowtideProject project;
        project.id = uuid();
        project.savedAt = {between(-1e9, 1e9)};
        project.source.url = Url::ofFile("/clips/" + std::to_string(engine_()) + " ü #1 100% \xF0\x9F\x8E\xAC?.mov");
        if (flag()) project.source.bookmark = Bookmark{"Ym9va21hcms/+w=="};
        project.source.fingerprint = std::to_string(engine_());
        project.source.duration = duration;

        ProjectEdits& edits = project.edits;
        edits.keyframes = curve(1 + below(20), duration, 0.01, 100);
        edits.smoothing = between(0, 1);
        edits.trimStart = between(0, duration / 3);
        edits.trimEnd = between(duration / 2, duration);
        edits.centerKeyframes = curve(1 + below(20), duration, 0, 1);
        edits.centerSmoothing = between(0, 1);
        edits.cropEnabled = flag();
        edits.cropAspect = static_cast<CropAspectRatio>(below(3));
        edits.lockCropCenter = flag();
        edits.zoomBlocks = zoomBlocks(below(5), duration, below(4));
        edits.interpolation = static_cast<FrameInterpolation>(below(2));
        edits.previewResolution = static_cast<PreviewResolution>(below(2));
        edits.smartCache = flag();
        if (flag()) {
            edits.previewStart = between(0, duration);
            edits.previewEnd = between(*edits.previewStart, duration);
        }
        edits.playhead = between(0, 1);
        edits.timelineZoom = between(1, 20);
        edits.timelineCenter = between(0, 1);
        edits.loopPreview = flag();
        if (flag()) edits.opticalFlowRanges = ranges(below(5), duration);
        if (edits.opticalFlowRanges && !edits.opticalFlowRanges->empty() && flag())
            edits.selectedOpticalFlowRangeID = edits.opticalFlowRanges->back().id;
        if (flag()) edits.trackedRanges = trackedRanges(below(5), duration);
        if (flag()) edits.originalFrameRanges = ranges(below(5), duration);
        return project;
    }

private:
    std::mt19937 engine_;
};

} // namespace flowtide::test
