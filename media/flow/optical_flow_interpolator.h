// In-between frames by motion estimation: the renderer behind "Optical Flow".
#pragma once

#include "media/flow/flow_pair.h"
#include "media/flow/worker_pool.h"
#include "media/frame_interpolation.h"
#include "media/frame_pool.h"

#include <memory>
#include <optional>
#include <utility>

namespace flowtide {

/// How an interpolator works; none of it changes a pixel.
struct OpticalFlowOptions {
    int threads = 0; ///< the caller's included; 0: one for each core
    flow::InstructionSet instructions = flow::bestInstructionSet();
};

/// Renders frames between two frames of one layout and size. Frames of the same pair share the motion that was
/// estimated for it. Used by one worker at a time; what it returns depends on its arguments alone.
class OpticalFlowInterpolator : public FrameInterpolating {
public:
    OpticalFlowInterpolator(int width, int height, PixelLayout layout, const OpticalFlowOptions& options = {});
    ~OpticalFlowInterpolator() override;

    VideoFrame render(const FramePair& frames, SourceSeconds time) override;

private:
    /// What is known of the last pair.
    struct CachedPair;

    CachedPair& pairOf(const TimedFrame& first, const TimedFrame& second);

    FramePool pool_;
    const flow::Kernels& kernels_;
    flow::WorkerPool workers_;
    std::unique_ptr<CachedPair> lastPair_;
};

} // namespace flowtide
