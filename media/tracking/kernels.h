// The inner loops of the tracker, behind a table that is chosen for the machine. Plain float arithmetic in one order
// without fused operations: every set of instructions gives the same bytes.
#pragma once

#include "media/instruction_set.h"
#include "media/tracking/subject_picture.h"

#include <cstddef>

namespace flowtide::tracking {

/// Gradient features: 18 signed and 9 unsigned orientations, 4 of texture, one that is always 0.
constexpr int channelCount = 32;
constexpr int usedChannels = 31;
constexpr int cellSide = 4;  ///< pixels
constexpr int gridSide = 32; ///< cells of a window
/// Pixels along the side of a patch of so many cells: one more on either side, for gradients.
constexpr int patchSide(int cells) {
    return cells * cellSide + 2;
}

/// The spectrum of a real signal of gridSide²: the columns that the others mirror.
constexpr int spectrumColumns = gridSide / 2 + 1;
constexpr int spectrumPlaces = gridSide * spectrumColumns;
/// Floats of the spectra of all channels: by place, channelCount real parts, then the imaginary ones.
constexpr std::size_t spectrumSize = static_cast<std::size_t>(spectrumPlaces) * 2 * channelCount;

/// Where a square array of samples lies in a plane: the first one's centre, (0, 0) being the plane's corner, and the
/// steps between them, all in the plane's pixels.
struct SampleGrid {
    double left = 0;
    double top = 0;
    double stepX = 1;
    double stepY = 1;
    int side = 0; ///< samples along each side, at most patchSide(gridSide)
};

/// cos and −sin of 2π k ÷ gridSide.
struct Twiddles {
    float cosine[gridSide];
    float sine[gridSide];
};
const Twiddles& twiddles();

struct Kernels {
    /// Bilinear samples, the plane's edge repeated outwards.
    void (*sample)(const BytePlane& plane, const SampleGrid& grid, float* samples);
    /// Histograms of oriented gradients of a patch of patchSide(cells)², normalised by their neighbourhood (after
    /// Felzenszwalb et al., "Object Detection with Discriminatively Trained Part-Based Models", 2010), channelCount
    /// floats a cell. `cells` at most gridSide.
    void (*features)(const float* patch, int cells, float* features);
    /// The spectra of gridSide² cells, each channel multiplied by `window` (gridSide² weights) first.
    void (*transform)(const float* features, const float* window, const Twiddles& twiddles, float* spectrum);
    /// For each place the filter's answer to a spectrum: the sum over channels of conj(numerator) × spectrum, divided
    /// by energy + damping. `answer`: spectrumPlaces pairs.
    void (*respond)(const float* numerator, const float* energy, float damping, const float* spectrum, float* answer);
    /// Moves a filter by `rate` towards the one that answers `label` (a real spectrum) to this spectrum.
    void (*learn)(const float* spectrum, const float* label, float rate, float* numerator, float* energy);
    /// The real signals, gridSide² values each, of two answers.
    void (*invert)(const float* first, const float* second, const Twiddles& twiddles, float* firstOut,
                   float* secondOut);
};

/// Those of a set that the machine can run.
const Kernels& kernelsFor(InstructionSet set);

namespace baseline {
void addFeatureKernels(Kernels& kernels);
void addSpectrumKernels(Kernels& kernels);
} // namespace baseline
namespace avx2 {
void addFeatureKernels(Kernels& kernels);
void addSpectrumKernels(Kernels& kernels);
} // namespace avx2

} // namespace flowtide::tracking
