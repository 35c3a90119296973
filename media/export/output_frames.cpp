// Schedule, in-between frame, crop and zoom: the steps of one output frame.
#include "media/export/output_frames.h"

namespace flowtide {

OutputFrames::OutputFrames(const ExportPlan& plan, VideoReader& reader, FrameInterpolating* renderer)
    : plan_(plan)
    , renderer_(renderer)
    , held_(reader, renderer ? HeldFrames::Context::kept : HeldFrames::Context::none, plan.contextReachSeconds)
    , framing_(plan.framing) {}

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
    if (renderer_ && next && previous.time < time && time < next->time &&
        OpticalFlowScope::contains(plan_.opticalFlowRanges, time))
        return renderer_->render({previous, *next, held_.before(), held_.after()}, time);
    return previous.frame;
}

} // namespace flowtide
