// In-between frames by motion estimation: the renderer behind "Optical Flow".
#pragma once

#include "media/flow/flow_pair.h"
#include "media/flow/phase_field.h"
#include "media/flow/worker_pool.h"
#include "media/frames/frame_interpolation.h"
#include "media/frames/frame_pool.h"

#include <deque>
#include <memory>

namespace flowtide {

/// How an interpolator works; none of it changes a pixel.
struct OpticalFlowOptions {
    int threads = 0; ///< the caller's included; 0: one for each core
    InstructionSet instructions = bestInstructionSet();
};

/// Renders frames between two frames of one layout and size. Frames of the same pair share the motion that was
/// estimated for it, and neighbouring pairs share theirs as context. Used by one worker at a time; what it returns
/// depends on its arguments alone, as long as one time always means the same frame.
class OpticalFlowInterpolator : public FrameInterpolating {
public:
    OpticalFlowInterpolator(int width, int height, PixelLayout layout, const OpticalFlowOptions& options = {});
    ~OpticalFlowInterpolator() override;

    VideoFrame render(const FramePair& frames, SourceSeconds time) override;

private:
    struct KnownFrame;
    struct KnownPair;
    struct CurrentPair;

    std::shared_ptr<const flow::Pyramid> lumaOf(const TimedFrame& frame);
    std::shared_ptr<KnownPair> pairOf(const TimedFrame& first, const TimedFrame& second);
    void moveTo(const FramePair& frames);

    FramePool pool_;
    const flow::Kernels& kernels_;
    flow::WorkerPool workers_;
    flow::FlowEstimator estimator_;
    flow::PhaseEstimator phases_;
    std::deque<KnownFrame> frames_;                ///< those of the last pairs, newest last
    std::deque<std::shared_ptr<KnownPair>> pairs_; ///< the last used last
    std::unique_ptr<CurrentPair> current_;
};

} // namespace flowtide
