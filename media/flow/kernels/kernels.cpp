// The tables of kernels, one for each set of instructions that was compiled, and the choice among them.
#include "media/flow/kernels/kernels.h"

#include "media/flow/kernels/kernel_sets.h"

namespace flowtide::flow {

namespace {

Kernels baselineKernels() {
    Kernels kernels{};
    baseline::addPatchKernels(kernels);
    baseline::addDensifyKernels(kernels);
    baseline::addFieldKernels(kernels);
    baseline::addPhaseKernels(kernels);
    baseline::addWarpKernels(kernels);
    return kernels;
}

#if defined(FLOWTIDE_HAS_AVX2_KERNELS)
Kernels avx2Kernels() {
    Kernels kernels{};
    avx2::addPatchKernels(kernels);
    avx2::addDensifyKernels(kernels);
    avx2::addFieldKernels(kernels);
    avx2::addPhaseKernels(kernels);
    avx2::addWarpKernels(kernels);
    return kernels;
}
#endif

} // namespace

const Kernels& kernelsFor(InstructionSet set) {
    static const Kernels plain = baselineKernels();
#if defined(FLOWTIDE_HAS_AVX2_KERNELS)
    static const Kernels wide = avx2Kernels();
    if (set == InstructionSet::avx2) return wide;
#endif
    static_cast<void>(set);
    return plain;
}

} // namespace flowtide::flow
