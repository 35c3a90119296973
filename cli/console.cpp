// Writes to standard output, and notices when it takes nothing.
#include "cli/console.h"

#include "media/flowtide_error.h"

#include <fmt/format.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace flowtide {

void Console::print(std::string_view line) const {
    printText(std::string(line) + '\n');
}

void Console::printText(std::string_view text) const {
    if (!output) return; // it has failed before, and that was said
    errno = 0;
    output << text << std::flush;
    const int cause = errno;
    if (output || cause == EPIPE || (isTerminal && cause == EIO)) return;
    throw FlowtideError::outputFailed(fmt::format("Standard output could not be written: {} (error {})",
                                                  std::generic_category().message(cause), cause));
}

} // namespace flowtide
