// The rules that a project document obeys, both when it is written and when it is read.
#pragma once

#include "project/flowtide_project.h"

namespace flowtide {

/// Throws ProjectError with the sentence of the first broken rule. The order is part of the contract: version, source,
/// then the edits.
void validate(const FlowtideProject& project);

/// The rules of the edits, for a clip of `duration` seconds: edit values, original-frame ranges, Optical Flow ranges,
/// tracked ranges, and overlapping zoom blocks last.
void validate(const ProjectEdits& edits, double duration);
} // namespace flowtide
