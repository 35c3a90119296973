// How the inspector's fields write, read and step their values.
#pragma once

#include "ui/controls/field.h"
#include "ui/graph/curve_editor_axis.h"

#include <functional>
#include <vector>

namespace flowtide::valueFormats {

/// Source seconds; a step is `frameSeconds()`.
Field::Format time(std::function<double()> frameSeconds);
/// A step is the last digit that is shown.
Field::Format speed();
/// Of the crop's travel, 0...1; a step is a percent.
Field::Format position();
/// A place in the picture, 0...1; a step is a percent.
Field::Format share();

/// What a curve's points are offered.
std::vector<Field::Preset> presets(const CurveEditorAxis& axis);

} // namespace flowtide::valueFormats
