// What the inspector's tabs show and change.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/point_selection.h"
#include "ui/user_settings.h"

namespace flowtide {

/// All of them outlive the inspector.
struct InspectorSession {
    FlowtideViewModel& model;
    PointSelection& points;
    UserSettings& settings;
};

} // namespace flowtide
