// A subject's colours, coarse enough to survive turning and light.
#pragma once

#include "core/subject_box.h"
#include "media/tracking/subject_picture.h"

#include <cstddef>
#include <vector>

namespace flowtide::tracking {

/// A histogram of the colours in a box that sums to 1: six hues for what is coloured, then nine greys.
struct SubjectAppearance {
    static constexpr std::size_t hueCount = 6;
    static constexpr std::size_t greyCount = 9;
    static constexpr std::size_t binCount = hueCount + greyCount;

    std::vector<double> bins;

    /// The colours inside the box (fractions of the picture), its middle counting most. Where the box reaches out of
    /// the picture, the edge is repeated.
    static SubjectAppearance colors(const SubjectPicture& picture, const SubjectBox& box);

    /// After Bhattacharyya: 0 for alike histograms to 1 for such that share nothing, or do not have `binCount` bins.
    static double distance(const SubjectAppearance& a, const SubjectAppearance& b);

    /// This, moved by a share towards another one.
    SubjectAppearance towards(const SubjectAppearance& other, double share) const;
};

} // namespace flowtide::tracking
