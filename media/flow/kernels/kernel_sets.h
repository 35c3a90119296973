// The functions by which each kernel file enters its kernels in a table, once for every set of instructions.
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
