// What each kernel file adds to a set of kernels, once for every set of instructions.
#pragma once

#include "media/flow/kernels/kernels.h"

namespace flowtide::flow {

namespace baseline {
void addPatchKernels(Kernels& kernels);
void addDensifyKernels(Kernels& kernels);
void addFieldKernels(Kernels& kernels);
void addPhaseKernels(Kernels& kernels);
void addWarpKernels(Kernels& kernels);
} // namespace baseline

namespace avx2 {
void addPatchKernels(Kernels& kernels);
void addDensifyKernels(Kernels& kernels);
void addFieldKernels(Kernels& kernels);
void addPhaseKernels(Kernels& kernels);
void addWarpKernels(Kernels& kernels);
} // namespace avx2

} // namespace flowtide::flow
