// How long work learns that its result is no longer wanted.
#pragma once

#include "media/flowtide_error.h"

#include <functional>

namespace flowtide {

/// Asked between the steps of long work, from the thread that does it: true once the work should be given up. An empty
/// function never asks to.
using CancelCheck = std::function<bool()>;

/// Throws FlowtideError::exportCancelled when the work should be given up.
inline void throwIfCancelled(const CancelCheck& isCancelled) {
    if (isCancelled && isCancelled()) throw FlowtideError::exportCancelled();
}

} // namespace flowtide
