// Replaces motion that cannot be trusted by what surrounds it.
#pragma once

#include "media/flow/flow_pair.h"

namespace flowtide::flow {

/// Fills `flow.motion` where its confidence is low from trusted motion around it, across likes in luma rather than
/// unlikes, unless the vector there explains the picture far better than the filling. `from` is where the motion
/// starts, `to` where it leads.
void fillUntrusted(DirectedFlow& flow, const GrayImage& from, const GrayImage& to);

} // namespace flowtide::flow
