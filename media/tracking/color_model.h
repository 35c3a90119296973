// Which colours are the object's and which its surroundings'.
#pragma once

#include "media/tracking/search_window.h"
#include "media/tracking/subject_picture.h"

#include <vector>

namespace flowtide::tracking {

/// Histograms of colour inside and around an object (after Bertinetto et al., "Staple: Complementary Learners for
/// Real-Time Tracking", 2016).
class ColorModel {
public:
    /// Moves both histograms by `rate` (1: replaces them) towards the picture's.
    void learn(const SubjectPicture& picture, const PixelBox& box, double rate);

    /// For each cell of the window, row by row, the mean probability that the pixels of a box with its middle there
    /// are the object's.
    void respond(const SubjectPicture& picture, const SearchWindow& window, const PixelBox& box,
                 std::vector<float>& response) const;

private:
    std::vector<float> inside_;
    std::vector<float> outside_;
};

} // namespace flowtide::tracking
