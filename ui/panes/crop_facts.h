// What the crop makes of the open clip.
#pragma once

#include "core/output_size.h"
#include "editor/flowtide_view_model.h"

namespace flowtide {

struct CropFacts {
    enum class State {
        off,
        on,
        notWider, ///< the clip is exported uncropped
        rotated   ///< the export would fail
    };
    State state = State::off;
    OutputSize outputSize; ///< pixels, as displayed
};

/// Of a session with a clip.
CropFacts cropFacts(const FlowtideViewModel& model);

} // namespace flowtide
