// How like a frame is to the true one, on luma.
#pragma once

#include "media/video_frame.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace flowtide::bench {

struct Quality {
    double psnr = 0;        ///< dB over the whole picture
    double ssim = 0;        ///< mean over 8 × 8 blocks
    double worstBlocks = 0; ///< dB over the worst hundredth of the 16 × 16 blocks
};

inline double decibels(double meanSquare) {
    return 10 * std::log10(255 * 255 / std::max(meanSquare, 1e-4));
}

/// The luma of an 8-bit frame's row.
inline const std::uint8_t* lumaRow(const VideoFrame& frame, int y) {
    return frame.planes[0].data + y * frame.planes[0].stride;
}

/// SSIM of two 8 × 8 blocks.
inline double blockSsim(const VideoFrame& frame, const VideoFrame& truth, int left, int top) {
    int sumA = 0;
    int sumB = 0;
    int sumAA = 0;
    int sumBB = 0;
    int sumAB = 0;
    for (int y = top; y < top + 8; ++y) {
        const std::uint8_t* p = lumaRow(frame, y) + left;
        const std::uint8_t* q = lumaRow(truth, y) + left;
        for (int x = 0; x < 8; ++x) {
            sumA += p[x];
            sumB += q[x];
            sumAA += p[x] * p[x];
            sumBB += q[x] * q[x];
            sumAB += p[x] * q[x];
        }
    }
    constexpr double c1 = 6.5025;  // (0.01 × 255)², the usual constants
    constexpr double c2 = 58.5225; // (0.03 × 255)²
    const double a = sumA / 64.0;
    const double b = sumB / 64.0;
    const double varianceA = sumAA / 64.0 - a * a;
    const double varianceB = sumBB / 64.0 - b * b;
    const double covariance = sumAB / 64.0 - a * b;
    return (2 * a * b + c1) * (2 * covariance + c2) / ((a * a + b * b + c1) * (varianceA + varianceB + c2));
}

/// Both frames 8-bit and of one size.
inline Quality quality(const VideoFrame& frame, const VideoFrame& truth) {
    Quality result;
    double total = 0;
    std::vector<double> blocks;
    for (int top = 0; top < truth.height; top += 16)
        for (int left = 0; left < truth.width; left += 16) {
            const int right = std::min(left + 16, truth.width);
            const int bottom = std::min(top + 16, truth.height);
            int sum = 0;
            for (int y = top; y < bottom; ++y) {
                const std::uint8_t* p = lumaRow(frame, y);
                const std::uint8_t* q = lumaRow(truth, y);
                for (int x = left; x < right; ++x)
                    sum += (p[x] - q[x]) * (p[x] - q[x]);
            }
            total += sum;
            blocks.push_back(static_cast<double>(sum) / ((right - left) * (bottom - top)));
        }
    result.psnr = decibels(total / (static_cast<double>(truth.width) * truth.height));
    std::sort(blocks.begin(), blocks.end(), std::greater<>());
    const std::size_t worst = std::max<std::size_t>(blocks.size() / 100, 1);
    double worstSum = 0;
    for (std::size_t i = 0; i < worst; ++i)
        worstSum += blocks[i];
    result.worstBlocks = decibels(worstSum / static_cast<double>(worst));

    double ssimSum = 0;
    int count = 0;
    for (int top = 0; top + 8 <= truth.height; top += 8)
        for (int left = 0; left + 8 <= truth.width; left += 8) {
            ssimSum += blockSsim(frame, truth, left, top);
            ++count;
        }
    result.ssim = count > 0 ? ssimSum / count : 1;
    return result;
}

} // namespace flowtide::bench
