// The motion between two frames, both ways, with how far it can be trusted.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"
#include "media/video_frame.h"

#include <vector>

namespace flowtide::flow {

/// Motion from one frame to the other, on half-resolution luma.
struct DirectedFlow {
    Field<Vector> motion;    ///< in half-resolution pixels; what could not be matched is filled in
    Field<float> confidence; ///< of the match before filling, 0...1
    Field<float> mismatch;   ///< squared distance by which there-and-back misses, in pixels²
};

/// Everything that the phases of a pair share.
struct FlowPair {
    GrayImage first; ///< half-resolution luma
    GrayImage second;
    DirectedFlow forward;  ///< from the first frame to the second
    DirectedFlow backward; ///< from the second to the first
    bool isCut = false;    ///< the frames show different scenes
};

/// Estimates both directions, on two threads. The result does not depend on their timing.
FlowPair estimateFlow(const std::vector<GrayImage>& first, const std::vector<GrayImage>& second);

} // namespace flowtide::flow
