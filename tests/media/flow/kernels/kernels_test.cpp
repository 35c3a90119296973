// The choice of kernels.
#include "media/flow/kernels/kernels.h"

#include <gtest/gtest.h>

namespace flowtide::flow {
namespace {

TEST(FlowKernels, TheMachineGetsTheBestSetThatItCanRun) {
#if defined(__x86_64__)
    EXPECT_EQ(bestInstructionSet() == InstructionSet::avx2, __builtin_cpu_supports("avx2") != 0);
#endif
    const bool hasMore = bestInstructionSet() != InstructionSet::baseline;
    EXPECT_EQ(kernelsFor(bestInstructionSet()).warp != kernelsFor(InstructionSet::baseline).warp, hasMore);
}

} // namespace
} // namespace flowtide::flow
