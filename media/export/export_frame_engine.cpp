// Plans the export, opens the source around one time, and draws one frame.
#include "media/export/export_frame_engine.h"

#include "media/export/export_plan.h"
#include "media/export/output_frames.h"
#include "media/flow/frame_renderer.h"
#include "media/flowtide_error.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace flowtide {

namespace {

// A time that was computed from a frame's own start belongs to that frame.
constexpr double startTolerance = 1e-6; // of a frame

std::int64_t indexAt(OutputSeconds time, const ExportPlan& plan) {
    const double place = time.value / plan.video.frameDuration.seconds() + startTolerance;
    return static_cast<std::int64_t>(std::clamp(std::floor(place), 0.0, static_cast<double>(plan.frameCount - 1)));
}

/// Hands out frames that are decoded already.
class GivenFrames : public VideoReader {
public:
    explicit GivenFrames(std::vector<TimedFrame> frames)
        : frames_(std::move(frames)) {}

    std::optional<TimedFrame> next() override {
        if (next_ == frames_.size()) return std::nullopt;
        return std::move(frames_[next_++]);
    }
    int concealedFrameCount() const override { return 0; }

private:
    std::vector<TimedFrame> frames_;
    std::size_t next_ = 0;
};

} // namespace

ExportFrame ExportFrameEngine::frame(const ExportRequest& request, OutputSeconds time, const CancelCheck& isCancelled) {
    const ImportedClip& clip = request.clip;
    const ExportPlan plan = planExport(request, [](std::string_view) {});
    ExportFrame result;
    result.index = indexAt(time, plan);
    result.sourceTime = plan.timeMap.sourceTime(OutputSeconds{plan.video.frameDuration.secondsTimes(result.index)});
    const bool isScoped = plan.interpolation == FrameInterpolation::opticalFlow &&
                          OpticalFlowScope::contains(plan.opticalFlowRanges, result.sourceTime);
    FramesAround& around = framesOf(clip, plan.video.layout);
    FrameInterpolating* renderer = isScoped ? &rendererFor(static_cast<int>(clip.encodedWidth()),
                                                           static_cast<int>(clip.encodedHeight()), plan.video.layout)
                                            : nullptr;
    GivenFrames reader(around.at(result.sourceTime, isCancelled));
    OutputFrames frames(plan, reader, renderer, result.index);
    auto drawn = frames.next();
    if (!drawn) throw FlowtideError::readerFailed("There is no frame at this time.");
    throwIfCancelled(isCancelled);
    result.frame = std::move(*drawn);
    result.isInBetween = frames.isInBetween();
    return result;
}

ExportPicture ExportFrameEngine::picture(const ExportRequest& request, OutputSeconds time, OutputSize maximumSize,
                                         const CancelCheck& isCancelled) {
    const ExportFrame drawn = frame(request, time, isCancelled);
    const ImportedClip& clip = request.clip;
    const OutputSize displayed =
        request.verticalCrop ? OutputSize{drawn.frame.width, drawn.frame.height} : OutputSize{clip.width, clip.height};
    return {converter_.convert(drawn.frame, pictureColor(clip), clip.preferredTransform,
                               shrunkSize(displayed, maximumSize)),
            OutputSeconds{clip.frameDuration.secondsTimes(drawn.index)}, drawn.sourceTime, drawn.isInBetween};
}

FramesAround& ExportFrameEngine::framesOf(const ImportedClip& clip, PixelLayout layout) {
    if (!around_ || around_->clip().url != clip.url || around_->layout() != layout) {
        around_ = std::make_unique<FramesAround>(backend_, clip, layout);
        renderer_.reset(); // it knows frames by their times alone
    }
    return *around_;
}

FrameInterpolating& ExportFrameEngine::rendererFor(int width, int height, PixelLayout layout) {
    if (!renderer_ || width != width_ || height != height_ || layout != layout_) {
        renderer_ = makeRenderer(FrameInterpolation::opticalFlow, width, height, layout);
        width_ = width;
        height_ = height;
        layout_ = layout;
    }
    return *renderer_;
}

} // namespace flowtide
