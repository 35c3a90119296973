// Dense motion between two luma pyramids, by matching overlapping patches from coarse to fine.
#pragma once

#include "media/flow/field.h"
#include "media/flow/gray_image.h"

#include <vector>

namespace flowtide::flow {

/// For each pixel of `from`'s finest level, where it lies in `to`, as a displacement in that level's pixels. Both
/// pyramids have the same sizes.
Field<Vector> patchFlow(const std::vector<GrayImage>& from, const std::vector<GrayImage>& to);

} // namespace flowtide::flow
