// Separable box filter.
#include "media/flow/box_mean.h"

namespace flowtide::flow {

Field<float> boxMean(const Field<float>& field) {
    constexpr int reach = 2;
    constexpr float share = 1.0F / (2 * reach + 1);
    const int width = field.width();
    const int height = field.height();
    Field<float> across(width, height);
    for (int y = 0; y < height; ++y) {
        const float* line = field.row(y);
        for (int x = 0; x < width; ++x) {
            float sum = 0;
            for (int d = -reach; d <= reach; ++d)
                sum += line[std::clamp(x + d, 0, width - 1)];
            across(x, y) = sum * share;
        }
    }
    Field<float> result(width, height);
    for (int y = 0; y < height; ++y) {
        float* out = result.row(y);
        for (int d = -reach; d <= reach; ++d) {
            const float* line = across.row(std::clamp(y + d, 0, height - 1));
            for (int x = 0; x < width; ++x)
                out[x] += line[x] * share;
        }
    }
    return result;
}

} // namespace flowtide::flow
