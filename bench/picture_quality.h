// How like a frame is to the true one, on luma.
#pragma once

#include "media/video_frame.h"

#include <algorithm>
#include <cmath>
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

/// Both frames 8-bit and of one size.
inline Quality quality(const VideoFrame& frame, const VideoFrame& truth) {
    const auto at = [](const VideoFrame& picture, int x, int y) {
        return static_cast<double>(picture.planes[0].data[y * picture.planes[0].stride + x]);
    };
    Quality result;
    double total = 0;
    std::vector<double> blocks;
    for (int top = 0; top < truth.height; top += 16)
        for (int left = 0; left < truth.width; left += 16) {
            const int right = std::min(left + 16, truth.width);
            const int bottom = std::min(top + 16, truth.height);
            double sum = 0;
            for (int y = top; y < bottom; ++y)
                for (int x = left; x < right; ++x)
                    sum += std::pow(at(frame, x, y) - at(truth, x, y), 2);
            total += sum;
            blocks.push_back(sum / ((right - left) * (bottom - top)));
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
            double a = 0, b = 0, aa = 0, bb = 0, ab = 0;
            for (int y = top; y < top + 8; ++y)
                for (int x = left; x < left + 8; ++x) {
                    const double p = at(frame, x, y);
                    const double q = at(truth, x, y);
                    a += p;
                    b += q;
                    aa += p * p;
                    bb += q * q;
                    ab += p * q;
                }
            a /= 64;
            b /= 64;
            const double varianceA = aa / 64 - a * a;
            const double varianceB = bb / 64 - b * b;
            const double covariance = ab / 64 - a * b;
            constexpr double c1 = 6.5025;  // (0.01 × 255)², the usual constants
            constexpr double c2 = 58.5225; // (0.03 × 255)²
            ssimSum += (2 * a * b + c1) * (2 * covariance + c2) / ((a * a + b * b + c1) * (varianceA + varianceB + c2));
            ++count;
        }
    result.ssim = count > 0 ? ssimSum / count : 1;
    return result;
}

} // namespace flowtide::bench
