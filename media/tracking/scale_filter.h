// How much larger or smaller an object has become.
#pragma once

#include "media/tracking/search_window.h"

#include <vector>

namespace flowtide::tracking {

/// A correlation filter along scale (after Danelljan et al., "Accurate Scale Estimation for Robust Visual Tracking",
/// 2014): the object's features at a series of sizes, and where in it the learnt size stands.
class ScaleFilter {
public:
    ScaleFilter();

    /// Moves the filter by `rate` (1: replaces it) towards this box's size.
    void learn(const Kernels& kernels, const SubjectPicture& picture, const PixelBox& box, double rate);
    /// By what the box's sides are to be multiplied.
    double factor(const Kernels& kernels, const SubjectPicture& picture, const PixelBox& box);

private:
    void transform(const Kernels& kernels, const SubjectPicture& picture, const PixelBox& box);

    std::vector<float> spectrum_; ///< of what was looked at last
    std::vector<float> numerator_;
    std::vector<double> energy_;
};

} // namespace flowtide::tracking
