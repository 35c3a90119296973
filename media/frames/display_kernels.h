// The inner loops of the conversion for a display, a row at a time: from YCbCr samples of 16 bits to pixels. Compiled
// once for any machine and once for AVX2; plain float arithmetic without fused operations, so both give the same bytes.
#pragma once

#include "media/instruction_set.h"

#include <cstddef>
#include <cstdint>

namespace flowtide::display {

/// R'G'B' from 16-bit codes: luma × y + offset, plus these multiples of the chroma codes' distance from neutral.
struct YCbCrMatrix {
    float luma = 0;
    float offset = 0;
    float redFromCr = 0;
    float greenFromCb = 0;
    float greenFromCr = 0;
    float blueFromCb = 0;
};
constexpr int neutralChroma = 1 << 15;

/// A value's place in a table whose steps grow with it: the top bits of its floating-point number, from the exponent
/// of `lowest` on, `stepsPerOctave` (a power of two) to each doubling.
struct OctaveScale {
    float lowest = 1; ///< a power of two; anything below counts as it
    float highest = 1;
    int mantissaBits = 0;
};

/// Steps of the table of decoded light; between its values it is interpolated, since colours at the edge of the
/// display's gamut are small differences of large values.
constexpr int decodeSteps = 1024;
constexpr int decodeUnits = decodeSteps << 12;

/// From R'G'B' to the display's codes through linear light. The tables by
/// octaves end with an entry for the highest value itself.
struct LinearLight {
    const float* decode = nullptr;     ///< for each step the light of R', G' or B' = step ÷ decodeSteps, and its rise
    const float* systemGain = nullptr; ///< display light ÷ scene light by the scene's luminance; absent: 1
    const float* toneCurve = nullptr;  ///< tone-mapped light by the largest of R, G, B; absent: the same
    OctaveScale systemScale;
    OctaveScale toneScale;
    float redLuminance = 0, greenLuminance = 0, blueLuminance = 0; ///< of the primaries; their sum is 1
    /// To the display's primaries: R = r + redFromGreen × (g − r) + redFromBlue × (b − r) and so on, so that grey stays
    /// exactly grey.
    float redFromGreen = 0, redFromBlue = 0;
    float greenFromRed = 0, greenFromBlue = 0;
    float blueFromRed = 0, blueFromGreen = 0;
    const std::uint8_t* encode = nullptr; ///< codes 0...255 of the display by light
    OctaveScale encodeScale;
};

/// One row: `count` samples each of Y, Cb and Cr in, pixels 0xffRRGGBB out.
struct RowKernels {
    /// R'G'B' are the display's; `matrix` gives 0...255.
    void (*direct)(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr, std::size_t count,
                   const YCbCrMatrix& matrix, std::uint32_t* pixels);
    /// `matrix` gives 0...decodeUnits.
    void (*linear)(const std::uint16_t* y, const std::uint16_t* cb, const std::uint16_t* cr, std::size_t count,
                   const YCbCrMatrix& matrix, const LinearLight& light, std::uint32_t* pixels);
};

namespace baseline {
RowKernels kernels();
} // namespace baseline
namespace avx2 {
RowKernels kernels();
} // namespace avx2

/// Those of a set that the machine can run.
RowKernels rowKernels(InstructionSet set);

} // namespace flowtide::display
