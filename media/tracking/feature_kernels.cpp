// Samples patches and makes gradient features of them. Loops over short arrays that compilers make vectors of; nothing
// of the standard library that is not a plain type: the linker would share it with code for other machines.
#include "media/tracking/kernels.h"

#include <cstring>

namespace flowtide::tracking::FLOWTIDE_KERNEL_SET {

namespace {

constexpr int mostSide = patchSide(gridSide);
constexpr int signedBins = 18;
constexpr int unsignedBins = 9;
constexpr int textureBins = 4;
// Keeps the noise of flat surfaces from counting as texture: gradients of about two codes.
constexpr float noiseEnergy = 400;
constexpr float mostOfCell = 0.2F; ///< one strong edge must not outweigh the rest
constexpr float textureScale = 0.2357F;

inline int clamped(int value, int low, int high) {
    if (value < low) return low;
    return value > high ? high : value;
}

inline float squareRoot(float value) {
    return __builtin_sqrtf(value);
}

/// A sample's two neighbours along an axis and how much the second one counts.
struct Tap {
    int first;
    int second;
    float share;
};

inline Tap tapAt(double position, int count) {
    const double shifted = position - 0.5;
    const double limit = shifted < -1 ? -1 : shifted;
    const double inside = limit > count ? count : limit;
    const int below = static_cast<int>(inside + 1) - 1; // floor: inside is at least -1
    return {clamped(below, 0, count - 1), clamped(below + 1, 0, count - 1), static_cast<float>(inside - below)};
}

void sample(const BytePlane& plane, const SampleGrid& grid, float* samples) {
    Tap columns[mostSide] = {};
    for (int i = 0; i < grid.side; ++i)
        columns[i] = tapAt(grid.left + i * grid.stepX, plane.width);
    const int begin = columns[0].first;
    const int end = columns[grid.side - 1].second + 1;
    float row[SubjectPicture::longestSide] = {};
    for (int j = 0; j < grid.side; ++j, samples += grid.side) {
        const Tap tap = tapAt(grid.top + j * grid.stepY, plane.height);
        const std::uint8_t* above = plane.data + tap.first * plane.stride;
        const std::uint8_t* below = plane.data + tap.second * plane.stride;
        for (int x = begin; x < end; ++x) {
            const auto value = static_cast<float>(above[x]);
            row[x] = value + tap.share * (static_cast<float>(below[x]) - value);
        }
        for (int i = 0; i < grid.side; ++i) {
            const float value = row[columns[i].first];
            samples[i] = value + columns[i].share * (row[columns[i].second] - value);
        }
    }
}

/// Cells of histograms with one more around them, for pixels between cells.
struct Cells {
    static constexpr int stride = (gridSide + 2) * signedBins;
    float bins[(gridSide + 2) * stride];

    float* row(int y) { return bins + (y + 1) * stride; }
    float* at(int x, int y) { return row(y) + (x + 1) * signedBins; }
};

/// Magnitude of each pixel's gradient in a row, and the one of 18 directions that is nearest.
void orient(const float* above, const float* here, const float* below, int width, float* magnitudes, int* bins) {
    constexpr float cosines[unsignedBins] = {1.0F,     0.9397F, 0.7660F,  0.5F,    0.1736F,
                                             -0.1736F, -0.5F,   -0.7660F, -0.9397F};
    constexpr float sines[unsignedBins] = {0.0F,    0.3420F, 0.6428F, 0.8660F, 0.9848F,
                                           0.9848F, 0.8660F, 0.6428F, 0.3420F};
    float best[mostSide];
    for (int x = 0; x < width; ++x) {
        const float dx = here[x + 1] - here[x - 1];
        const float dy = below[x] - above[x];
        magnitudes[x] = squareRoot(dx * dx + dy * dy);
        best[x] = 0;
        bins[x] = 0;
    }
    for (int bin = 0; bin < unsignedBins; ++bin) {
        const float cosine = cosines[bin];
        const float sine = sines[bin];
        for (int x = 0; x < width; ++x) {
            const float dot = cosine * (here[x + 1] - here[x - 1]) + sine * (below[x] - above[x]);
            const float size = dot < 0 ? -dot : dot;
            const int direction = dot < 0 ? bin + unsignedBins : bin;
            bins[x] = size > best[x] ? direction : bins[x];
            best[x] = size > best[x] ? size : best[x];
        }
    }
}

/// Shares each pixel out among the four cells around it.
void gather(const float* patch, int count, Cells& cells) {
    // Of a pixel's place in its cell: what goes to the cell before, and to the one after.
    constexpr float before[cellSide] = {0.375F, 0.125F, 0, 0};
    constexpr float after[cellSide] = {0, 0, 0.125F, 0.375F};
    const int side = patchSide(count);
    const int width = count * cellSide;
    float magnitudes[mostSide];
    int bins[mostSide];
    float row[Cells::stride];
    std::memset(&cells, 0, sizeof cells);
    const int used = (count + 2) * signedBins;
    for (int y = 0; y < width; ++y) {
        const float* here = patch + (y + 1) * side + 1;
        orient(here - side, here, here + side, width, magnitudes, bins);
        std::memset(row, 0, sizeof row);
        for (int x = 0; x < width; ++x) {
            const int phase = x % cellSide;
            float* cell = row + (x / cellSide + 1) * signedBins + bins[x];
            const float lost = before[phase] + after[phase];
            cell[0] += magnitudes[x] * (1 - lost);
            cell[phase < cellSide / 2 ? -signedBins : signedBins] += magnitudes[x] * lost;
        }
        const int phase = y % cellSide;
        const float lost = before[phase] + after[phase];
        float* own = cells.row(y / cellSide);
        float* other = cells.row(y / cellSide + (phase < cellSide / 2 ? -1 : 1));
        for (int i = 0; i < used; ++i) {
            own[i] += (1 - lost) * row[i];
            other[i] += lost * row[i];
        }
    }
}

void normalize(const float* histogram, const float* scales, float* out) {
    float texture[textureBins] = {};
    for (int bin = 0; bin < signedBins; ++bin) {
        float sum = 0;
        for (int k = 0; k < textureBins; ++k) {
            const float value = histogram[bin] * scales[k];
            const float limited = value < mostOfCell ? value : mostOfCell;
            sum += limited;
            texture[k] += limited;
        }
        out[bin] = 0.5F * sum;
    }
    for (int bin = 0; bin < unsignedBins; ++bin) {
        const float both = histogram[bin] + histogram[bin + unsignedBins];
        float sum = 0;
        for (int k = 0; k < textureBins; ++k) {
            const float value = both * scales[k];
            sum += value < mostOfCell ? value : mostOfCell;
        }
        out[signedBins + bin] = 0.5F * sum;
    }
    for (int k = 0; k < textureBins; ++k)
        out[signedBins + unsignedBins + k] = textureScale * texture[k];
    out[usedChannels] = 0;
}

void features(const float* patch, int count, float* out) {
    Cells cells;
    gather(patch, count, cells);
    float energies[gridSide * gridSide] = {};
    for (int y = 0; y < count; ++y)
        for (int x = 0; x < count; ++x) {
            const float* histogram = cells.at(x, y);
            float energy = 0;
            for (int bin = 0; bin < unsignedBins; ++bin) {
                const float both = histogram[bin] + histogram[bin + unsignedBins];
                energy += both * both;
            }
            energies[y * count + x] = energy;
        }
    // The four blocks of 2 × 2 cells that a cell belongs to; beyond the edge its own row or column counts again.
    float scales[(gridSide + 1) * (gridSide + 1)];
    for (int y = 0; y <= count; ++y)
        for (int x = 0; x <= count; ++x) {
            const int left = clamped(x - 1, 0, count - 1);
            const int right = clamped(x, 0, count - 1);
            const float* above = energies + clamped(y - 1, 0, count - 1) * count;
            const float* below = energies + clamped(y, 0, count - 1) * count;
            scales[y * (count + 1) + x] =
                1 / squareRoot(above[left] + above[right] + below[left] + below[right] + noiseEnergy);
        }
    for (int y = 0; y < count; ++y)
        for (int x = 0; x < count; ++x) {
            const float* above = scales + y * (count + 1) + x;
            const float* below = above + count + 1;
            const float four[textureBins] = {above[0], above[1], below[0], below[1]};
            normalize(cells.at(x, y), four, out + (y * count + x) * channelCount);
        }
}

} // namespace

void addFeatureKernels(Kernels& kernels) {
    kernels.sample = sample;
    kernels.features = features;
}

} // namespace flowtide::tracking::FLOWTIDE_KERNEL_SET
