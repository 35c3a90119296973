// Box-filtered matching errors: the mean of 5 × 5 pixels around each pixel of a tile.
#pragma once

#include "media/flow/kernels/sampling.h"

namespace flowtide::flow::FLOWTIDE_KERNEL_SET {

constexpr int tileReach = 2; // pixels: 5 × 5 means
constexpr int tileRows = tileSize + 2 * tileReach;
constexpr int tileStride = tileRows + 4; // whole vectors

/// One value for each pixel of a tile and its surroundings.
struct TileValues {
    float at[tileRows][tileStride];
};
/// One value for each pixel of a tile.
struct TileMeans {
    float at[tileSize][tileSize];
};

/// 5 × 5 means of values that were filled in from tileReach pixels outside.
inline void tileMeans(const TileValues& values, TileMeans& means) {
    float across[tileRows][tileSize];
    for (int y = 0; y < tileRows; ++y)
        for (int x = 0; x < tileSize; ++x) {
            const float* v = values.at[y] + x;
            across[y][x] = ((v[0] + v[1]) + (v[2] + v[3])) + v[4];
        }
    for (int y = 0; y < tileSize; ++y)
        for (int x = 0; x < tileSize; ++x)
            means.at[y][x] =
                (((across[y][x] + across[y + 1][x]) + (across[y + 2][x] + across[y + 3][x])) + across[y + 4][x]) *
                0.04F;
}

/// Calls value(x, y, lane columns) for the vectors that cover a tile and its surroundings; outside the field the
/// nearest pixel's place is given.
template <typename ValueAt>
inline void fillTile(int left, int top, int width, int height, TileValues& values, ValueAt&& valueAt) {
    for (int y = 0; y < tileRows; ++y) {
        const int row = clamp(top - tileReach + y, 0, height - 1);
        for (int x = 0; x < tileStride; x += 8) {
            const Int8 columns = clamp(laneNumbers() + (left - tileReach + x), Int8{}, Int8{} + (width - 1));
            store(values.at[y] + x, valueAt(columns, row));
        }
    }
}

} // namespace flowtide::flow::FLOWTIDE_KERNEL_SET
