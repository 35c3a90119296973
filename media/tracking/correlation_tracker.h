// Our object tracker: discriminative correlation filters on gradients, a model of colours, a filter along scale.
#pragma once

#include "media/tracking/kernels.h"
#include "media/tracking/object_tracker.h"

#include <memory>

namespace flowtide::tracking {

/// A tracker of what a box (fractions of the picture, larger than `smallestSubject`) shows. The same pictures give the
/// same boxes on every machine.
std::unique_ptr<ObjectTracker> makeCorrelationTracker(const SubjectPicture& picture, const SubjectBox& box,
                                                      InstructionSet instructions = bestInstructionSet());

} // namespace flowtide::tracking
