// Filling of vectors that cannot be trusted.
#pragma once

#include "media/flow/flow_pair.h"

namespace flowtide::flow {

/// Replaces vectors of low confidence by what surrounds them, likely luma counting more; found vectors that fit the
/// images far better than the filling stay.
void fillUntrusted(DirectedFlow& flow, const GrayImage& from, const GrayImage& to, const Kernels& kernels,
                   WorkerPool& workers);

} // namespace flowtide::flow
