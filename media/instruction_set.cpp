// Asks the processor.
#include "media/instruction_set.h"

namespace flowtide {

InstructionSet bestInstructionSet() {
#if defined(FLOWTIDE_HAS_AVX2_KERNELS)
    if (__builtin_cpu_supports("avx2")) return InstructionSet::avx2;
#endif
    return InstructionSet::baseline;
}

} // namespace flowtide
