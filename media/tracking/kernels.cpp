// The tables of kernels, and the choice among them.
#include "media/tracking/kernels.h"

#include <cmath>
#include <numbers>

namespace flowtide::tracking {

const Twiddles& twiddles() {
    static const Twiddles table = [] {
        Twiddles result{};
        for (int k = 0; k < gridSide; ++k) {
            const double angle = 2 * std::numbers::pi * k / gridSide;
            result.cosine[k] = static_cast<float>(std::cos(angle));
            result.sine[k] = static_cast<float>(-std::sin(angle));
        }
        return result;
    }();
    return table;
}

const Kernels& kernelsFor(InstructionSet set) {
    static const Kernels plain = [] {
        Kernels kernels{};
        baseline::addFeatureKernels(kernels);
        baseline::addSpectrumKernels(kernels);
        return kernels;
    }();
#if defined(FLOWTIDE_HAS_AVX2_KERNELS)
    static const Kernels wide = [] {
        Kernels kernels{};
        avx2::addFeatureKernels(kernels);
        avx2::addSpectrumKernels(kernels);
        return kernels;
    }();
    if (set == InstructionSet::avx2) return wide;
#endif
    static_cast<void>(set);
    return plain;
}

} // namespace flowtide::tracking
