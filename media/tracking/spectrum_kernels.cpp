// Fourier transforms of all channels at once, and the filters' arithmetic on them.
#include "media/tracking/kernels.h"

#include <cstring>

namespace flowtide::tracking::FLOWTIDE_KERNEL_SET {

namespace {

constexpr int stages = 5;
static_assert(1 << stages == gridSide);
constexpr int half = channelCount / 2;
constexpr int lane = 16; ///< floats that are summed side by side

constexpr int reversedBits(int index) {
    int result = 0;
    for (int bit = 0; bit < stages; ++bit)
        result |= ((index >> bit) & 1) << (stages - 1 - bit);
    return result;
}

/// Values of a line, `Lanes` signals side by side.
template <int Lanes>
struct Complex {
    float real[Lanes];
    float imaginary[Lanes];
};

/// The transform of a line in place, whose values have been put in bit-reversed order (Cooley and Tukey).
template <int Lanes>
inline void transformLine(Complex<Lanes>* line, const Twiddles& twiddles) {
    for (int length = 2; length <= gridSide; length *= 2)
        for (int start = 0; start < gridSide; start += length)
            for (int k = 0; k < length / 2; ++k) {
                Complex<Lanes>& a = line[start + k];
                Complex<Lanes>& b = line[start + k + length / 2];
                const float cosine = twiddles.cosine[k * (gridSide / length)];
                const float sine = twiddles.sine[k * (gridSide / length)];
                for (int i = 0; i < Lanes; ++i) {
                    const float real = b.real[i] * cosine - b.imaginary[i] * sine;
                    const float imaginary = b.real[i] * sine + b.imaginary[i] * cosine;
                    b.real[i] = a.real[i] - real;
                    b.imaginary[i] = a.imaginary[i] - imaginary;
                    a.real[i] += real;
                    a.imaginary[i] += imaginary;
                }
            }
}

template <int Lanes>
inline void transformColumns(Complex<Lanes>* grid, const Twiddles& twiddles) {
    Complex<Lanes> line[gridSide];
    for (int x = 0; x < gridSide; ++x) {
        for (int y = 0; y < gridSide; ++y)
            line[reversedBits(y)] = grid[y * gridSide + x];
        transformLine(line, twiddles);
        for (int y = 0; y < gridSide; ++y)
            grid[y * gridSide + x] = line[y];
    }
}

void transform(const float* features, const float* window, const Twiddles& twiddles, float* spectrum) {
    // Two real channels make one complex one; their spectra come apart by symmetry.
    static_assert(gridSide * gridSide * sizeof(Complex<half>) < 256 * 1024); // of the stack
    Complex<half> grid[gridSide * gridSide];
    constexpr float unitary = 1.0F / gridSide;
    for (int y = 0; y < gridSide; ++y) {
        for (int x = 0; x < gridSide; ++x) {
            const int place = y * gridSide + x;
            const float weight = window[place] * unitary;
            Complex<half>& to = grid[y * gridSide + reversedBits(x)];
            const float* from = features + place * channelCount;
            for (int i = 0; i < half; ++i) {
                to.real[i] = from[i] * weight;
                to.imaginary[i] = from[i + half] * weight;
            }
        }
        transformLine(grid + y * gridSide, twiddles);
    }
    transformColumns(grid, twiddles);
    for (int y = 0; y < gridSide; ++y)
        for (int x = 0; x < spectrumColumns; ++x) {
            const Complex<half>& a = grid[y * gridSide + x];
            const Complex<half>& b = grid[(gridSide - y) % gridSide * gridSide + (gridSide - x) % gridSide];
            float* real = spectrum + (y * spectrumColumns + x) * 2 * channelCount;
            float* imaginary = real + channelCount;
            for (int i = 0; i < half; ++i) {
                real[i] = 0.5F * (a.real[i] + b.real[i]);
                imaginary[i] = 0.5F * (a.imaginary[i] - b.imaginary[i]);
                real[i + half] = 0.5F * (a.imaginary[i] + b.imaginary[i]);
                imaginary[i + half] = 0.5F * (b.real[i] - a.real[i]);
            }
        }
}

inline float sum(const float* values) {
    float eight[8];
    for (int i = 0; i < 8; ++i)
        eight[i] = values[i] + values[i + 8];
    return ((eight[0] + eight[4]) + (eight[2] + eight[6])) + ((eight[1] + eight[5]) + (eight[3] + eight[7]));
}

void respond(const float* numerator, const float* energy, float damping, const float* spectrum, float* answer) {
    for (int place = 0; place < spectrumPlaces; ++place) {
        const float* filterReal = numerator + place * 2 * channelCount;
        const float* filterImaginary = filterReal + channelCount;
        const float* real = spectrum + place * 2 * channelCount;
        const float* imaginary = real + channelCount;
        float sumReal[lane];
        float sumImaginary[lane];
        for (int i = 0; i < lane; ++i) {
            sumReal[i] = (filterReal[i] * real[i] + filterImaginary[i] * imaginary[i]) +
                         (filterReal[i + lane] * real[i + lane] + filterImaginary[i + lane] * imaginary[i + lane]);
            sumImaginary[i] = (filterReal[i] * imaginary[i] - filterImaginary[i] * real[i]) +
                              (filterReal[i + lane] * imaginary[i + lane] - filterImaginary[i + lane] * real[i + lane]);
        }
        const float scale = 1 / (energy[place] + damping);
        answer[2 * place] = sum(sumReal) * scale;
        answer[2 * place + 1] = sum(sumImaginary) * scale;
    }
}

void learn(const float* spectrum, const float* label, float rate, float* numerator, float* energy) {
    const float kept = 1 - rate;
    for (int place = 0; place < spectrumPlaces; ++place) {
        const float* from = spectrum + place * 2 * channelCount;
        float* to = numerator + place * 2 * channelCount;
        const float gain = rate * label[place];
        for (int i = 0; i < 2 * channelCount; ++i)
            to[i] = kept * to[i] + gain * from[i];
        float squares[lane];
        for (int i = 0; i < lane; ++i)
            squares[i] = (from[i] * from[i] + from[i + lane] * from[i + lane]) +
                         (from[i + 2 * lane] * from[i + 2 * lane] + from[i + 3 * lane] * from[i + 3 * lane]);
        energy[place] = kept * energy[place] + rate * sum(squares);
    }
}

void invert(const float* first, const float* second, const Twiddles& twiddles, float* firstOut, float* secondOut) {
    // The conjugate's forward transform is the inverse's conjugate; both real signals come out of one complex one.
    Complex<1> grid[gridSide * gridSide];
    for (int y = 0; y < gridSide; ++y) {
        for (int x = 0; x < gridSide; ++x) {
            const bool mirrored = x >= spectrumColumns;
            const int row = mirrored ? (gridSide - y) % gridSide : y;
            const int column = mirrored ? gridSide - x : x;
            const int place = 2 * (row * spectrumColumns + column);
            const float sign = mirrored ? -1.0F : 1.0F;
            const float real = first[place] - sign * second[place + 1];
            const float imaginary = sign * first[place + 1] + second[place];
            grid[y * gridSide + reversedBits(x)] = {{real}, {-imaginary}};
        }
        transformLine(grid + y * gridSide, twiddles);
    }
    transformColumns(grid, twiddles);
    constexpr float scale = 1.0F / (gridSide * gridSide);
    for (int place = 0; place < gridSide * gridSide; ++place) {
        firstOut[place] = grid[place].real[0] * scale;
        secondOut[place] = -grid[place].imaginary[0] * scale;
    }
}

} // namespace

void addSpectrumKernels(Kernels& kernels) {
    kernels.transform = transform;
    kernels.respond = respond;
    kernels.learn = learn;
    kernels.invert = invert;
}

} // namespace flowtide::tracking::FLOWTIDE_KERNEL_SET
