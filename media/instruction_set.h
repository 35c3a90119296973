// Which of our kernels a machine can run. They are compiled once for any machine and once for AVX2.
#pragma once

namespace flowtide {

/// Instructions that a machine may have beyond what every one of its kind has.
enum class InstructionSet { baseline, avx2 };

/// The best that this machine has and that kernels were compiled for.
InstructionSet bestInstructionSet();

} // namespace flowtide
