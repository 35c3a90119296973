// Five by five means.
#pragma once

#include "media/flow/field.h"

namespace flowtide::flow {

/// Each value replaced by the mean of the 5 × 5 around it, edges repeated.
Field<float> boxMean(const Field<float>& field);

} // namespace flowtide::flow
