// Schedule, in-between frame, crop and zoom: the steps of one output frame.
#include "media/export/output_frames.h"

namespace flowtide {

OutputFrames::OutputFrames(const ExportPlan& plan, VideoReader& reader, FrameInterpolating* renderer,
                           std::int64_t firstIndex)
    : plan_(plan)
    , renderer_(renderer)
    , held_(reader, renderer ? HeldFrames::Context::kept : HeldFrames::Context::none, plan.contextReachSeconds)
    , framing_(plan.framing)
    , index_(firstIndex) {}

std::optional<VideoFrame> OutputFrames::next() {
    if (index_ >= plan_.frameCount) return std::nullopt;
    const OutputSeconds outputTime{plan_.video.frameDuration.secondsTimes(index_)};
    const SourceSeconds sourceTime = plan_.timeMap.sourceTime(outputTime, cursor_);
    held_.advanceTo(sourceTime);
    if (!held_.previous()) return std::nullopt;
    return framing_.render(frameAt(sourceTime), sourceTime, index_++);
}

VideoFrame OutputFrames::frameAt(SourceSeconds time) {
    const TimedFrame& previous = *held_.previous();
    const auto& next = held_.next();
    isInBetween_ = renderer_ && next && previous.time < time && time < next->time &&
                   OpticalFlowScope::contains(plan_.opticalFlowRanges, time);
    return isInBetween_ ? renderer_->render({previous, *next, held_.before(), held_.after()}, time) : previous.frame;
}

} // namespace flowtide
