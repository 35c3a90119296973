// Random edits of a session, as no user would make them.
#pragma once

#include "editor/flowtide_view_model.h"

#include <random>

namespace flowtide::test {

/// Makes one random operation after another; the same ones for the same seed.
class EditStorm {
public:
    EditStorm(FlowtideViewModel& model, unsigned seed)
        : model_(model)
        , random_(seed) {}

    void step() {
        switch (random_() % 26) {
        case 0:
        case 1:
        case 2:
            return model_.replaceKeyframes(points(0.005, 200));
        case 3:
            return model_.replaceCenterKeyframes(points(-0.2, 1.2));
        case 4:
            return model_.applyTrimRange(anything(-1, 6), anything(3, 11));
        case 5:
            return model_.addZoomBlock({anything(-1, 10), anything(0, 11)});
        case 6:
            return model_.addOrSelectZoomBlock();
        case 7:
            return changeABlock();
        case 8:
            return model_.beginCurveEdit();
        case 9:
        case 10:
            return model_.endCurveEdit();
        case 11:
        case 12:
            return model_.undo();
        case 13:
            return model_.redo();
        case 14:
            return switchARange();
        case 15:
            return model_.scrub(anything(-0.1, 1.1), random_() % 2 == 0);
        case 16:
            return drag();
        case 17:
            return track();
        case 18:
            return model_.setCurveSmoothing(anything(-0.2, 1.2));
        case 19:
            return setAnything();
        case 20:
            return random_() % 2 ? model_.resetCurve() : model_.resetCenterCurve();
        case 21:
            return model_.resetTrimRange();
        case 22:
            return random_() % 2 ? model_.jumpToPreviousKeyframe() : model_.jumpToNextKeyframe();
        case 23:
        case 24:
            return play();
        default:
            return moveAPoint();
        }
    }

private:
    double anything(double low, double high) {
        if (random_() % 200 == 0) return std::numeric_limits<double>::quiet_NaN();
        if (random_() % 50 == 0) return low;
        return std::uniform_real_distribution<>(low, high)(random_);
    }
    SpeedKeyframes points(double low, double high) {
        SpeedKeyframes list;
        for (auto count = random_() % 12; count > 0; --count)
            list.push_back({Uuid::random(), anything(-1, 11),
                            std::exp(anything(std::log(low + 1), std::log(high + 1))) - 1,
                            static_cast<SpeedKeyframeRole>(random_() % 3)});
        return list;
    }
    void moveAPoint() {
        SpeedKeyframes list = model_.curve().keyframes();
        auto& point = list[random_() % list.size()];
        point.time += anything(-1, 1);
        point.speed *= anything(0.5, 2);
        if (random_() % 8 == 0) list.push_back(point); // twice
        model_.replaceKeyframes(list);
    }
    void changeABlock() {
        const auto& blocks = model_.zoom().zoomBlocks();
        if (blocks.empty()) return;
        ZoomBlock block = blocks[random_() % blocks.size()];
        switch (random_() % 5) {
        case 0:
            return model_.moveZoomBlock(block.id, anything(-1, 11));
        case 1:
            return model_.removeZoomBlock(block.id);
        case 2:
            return model_.updateZoomFocal(block.id, anything(-1, 2), anything(-1, 2), random_() % 2 == 0);
        case 3:
            return model_.selectZoomBlock(block.id);
        default:
            block.startTime += anything(-2, 2);
            block.endTime += anything(-2, 2);
            block.amount = anything(0, 6);
            block.rampDuration = anything(-1, 5);
            block.focalX = anything(-1, 2);
            block.mode = static_cast<ZoomMode>(random_() % 4);
            return model_.updateZoomBlock(block);
        }
    }
    void switchARange() {
        const auto& ranges = model_.flow().opticalFlowRanges();
        if (ranges.empty()) return;
        const Uuid id = ranges[random_() % ranges.size()].id;
        if (random_() % 3 == 0)
            model_.selectOpticalFlowRange(id);
        else
            model_.setOpticalFlow(random_() % 2 == 0, id);
    }
    void play() {
        switch (random_() % 5) {
        case 0:
            return model_.nudgePlayhead(static_cast<int>(random_() % 9) - 4);
        case 1:
            return model_.shuttleBackward();
        case 2:
            return model_.setComparisonEnabled(random_() % 2 == 0);
        case 3:
            return model_.togglePlayback();
        default:
            return model_.startPlayback(static_cast<float>(anything(-9, 9)));
        }
    }
    void drag() {
        model_.setLockCropCenter(random_() % 4 == 0);
        model_.beginCropDrag();
        for (auto moves = random_() % 4; moves > 0; --moves)
            model_.updateCropDrag(anything(-0.5, 1.5));
        if (random_() % 4 != 0) model_.endCropDrag();
    }
    void track() {
        SubjectTrackResult result;
        double time = anything(0, 8);
        for (auto count = random_() % 60; count > 0; --count)
            result.samples.push_back({time += random_() % 9 == 0 ? 0.2 : 1.0 / 30, anything(0, 1)});
        for (auto& sample : result.samples)
            if (!std::isfinite(sample.centerX)) sample.centerX = 0.5;
        if (result.samples.empty() || !std::isfinite(time) || time > 10) return;
        result.lostAfterSeed = result.lostSubject = random_() % 2 == 0;
        model_.applySubjectTrackingResult(result);
    }
    void setAnything() {
        model_.setTimelineZoom(anything(0, 30));
        model_.setTimelineCenter(anything(-1, 2));
        model_.setCenterSmoothing(anything(-1, 2));
        model_.setVerticalCropEnabled(random_() % 2 == 0);
        model_.setCropAspectRatio(static_cast<CropAspectRatio>(random_() % 3));
        model_.setLoopPreview(random_() % 2 == 0);
        model_.setFrameInterpolation(static_cast<FrameInterpolation>(random_() % 2));
        model_.setPreviewResolution(static_cast<PreviewResolution>(random_() % 2));
        model_.setSmartPreviewEnabled(random_() % 2 == 0);
    }

    FlowtideViewModel& model_;
    std::mt19937 random_;
};

} // namespace flowtide::test
