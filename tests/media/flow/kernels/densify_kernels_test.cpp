// One displacement for each pixel, against the weighted mean of its four patches.
#include "tests/media/flow/kernels/kernel_test.h"

namespace flowtide::flow {
namespace {

class FlowDensifyKernels : public KernelTest {};
INSTANTIATE_TEST_SUITE_P(Sets, FlowDensifyKernels, testing::ValuesIn(instructionSets()), instructionSetName);

TEST_P(FlowDensifyKernels, PixelsTakeTheMeanOfTheirPatchesByFit) {
    for (const Size size : kernelSizes)
        for (const double reach : {1.5, 9.0, 600.0}) {
            const GrayImage from = waveImage(size, 0, 0);
            const GrayImage to = noiseImage(size, random);
            // Patches of 8 × 8 pixels, every 4 pixels from (-4, -4) on.
            const int columns = (size.width - 1) / 4 + 2;
            const int rows = (size.height - 1) / 4 + 2;
            const int stride = columns + 2;
            std::vector<float> x(static_cast<std::size_t>(stride * (rows + 3)));
            std::vector<float> y(x.size());
            for (std::size_t i = 0; i < x.size(); ++i) {
                x[i] = static_cast<float>(random.real(-reach, reach));
                y[i] = static_cast<float>(random.real(-reach, reach));
            }
            PatchSearch search{from.view(), to.view(), {}, {}, false};
            search.patches.columns = columns;
            search.patches.rows = rows;
            search.patches.stride = stride;
            search.patches.x = x.data();
            search.patches.y = y.data();
            Field<MotionVector> motion(size.width, size.height);
            std::vector<float> scratch(densifyScratchSize(columns), std::nanf(""));
            inTwoBands(rows - 1, 1, [&](int begin, int end) {
                kernels.densify(search, scratch.data(), motion.row(0), size.width, begin, end);
            });
            for (const bool isX : {true, false})
                compare(
                    "displacement", size, rounding,
                    [&](int column, int row) { return isX ? motion(column, row).x : motion(column, row).y; },
                    [&](int column, int row) {
                        double sum = 0;
                        double weights = 0;
                        for (const int j : {row / 4, row / 4 + 1})
                            for (const int i : {column / 4, column / 4 + 1}) {
                                const auto at = static_cast<std::size_t>((j + 1) * stride + i + 1);
                                const auto rounded = [](float v) { return static_cast<int>(std::lround(v * 64)); };
                                const int mx = rounded(x[at]);
                                const int my = rounded(y[at]);
                                // Bilinear in whole numbers, rounded to sixteenths across and quarters down.
                                const auto across = [&](int line) {
                                    const int left = pixel(to, column + (mx >> 6), row + (my >> 6) + line);
                                    const int right = pixel(to, column + (mx >> 6) + 1, row + (my >> 6) + line);
                                    return (left * (64 - (mx & 63)) + right * (mx & 63) + 8) / 16;
                                };
                                const int found = (across(0) * (64 - (my & 63)) + across(1) * (my & 63) + 32) / 64;
                                const double difference = found / 4.0 - pixel(from, column, row);
                                const double weight = 1 / std::max(difference * difference, 1.0);
                                sum += weight * (isX ? x[at] : y[at]);
                                weights += weight;
                            }
                        return 64 * std::clamp(sum / weights, -500.0, 500.0);
                    });
        }
}

} // namespace
} // namespace flowtide::flow
