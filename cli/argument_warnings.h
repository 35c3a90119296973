// What a command line asks for that an export will not do, though nothing is wrong enough to refuse it.
#pragma once

#include "cli/export_command_line.h"

#include <string>
#include <vector>

namespace flowtide::HeadlessExport {

/// A sentence for each trap in a command line that was read without an error: words that nothing takes, values that
/// are no numbers, options without effect, curve points outside the trim, a destination named like another container.
std::vector<std::string> warningsAbout(const SortedWords& words, const ExportRequest& request);

} // namespace flowtide::HeadlessExport
