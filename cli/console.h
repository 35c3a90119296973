// The two streams that a run prints to.
#pragma once

#include <ostream>
#include <string_view>

namespace flowtide {

/// Standard output and error of a run, whole lines at a time and flushed, so that both stay in order when piped.
struct Console {
    std::ostream& output;
    std::ostream& error;
    bool isTerminal = false; ///< whether the output was one at the start; a terminal can be closed

    /// Prints a line. Throws FlowtideError the first time that standard output does not take what it is given, so that
    /// nobody takes a lost answer for a given one. A reader or a terminal that goes away has been read as far as
    /// anybody wanted: that is no failure.
    void print(std::string_view line) const;
    /// The same for a text that brings its own line feeds.
    void printText(std::string_view text) const;
    /// Prints a line on standard error. There is nowhere to say that it failed.
    void complain(std::string_view line) const { error << line << '\n' << std::flush; }
};

} // namespace flowtide
