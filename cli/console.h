// The two streams that a run prints to.
#pragma once

#include <ostream>
#include <string_view>

namespace flowtide {

/// Standard output and error of a run, whole lines at a time and flushed, so that both stay in order when piped.
struct Console {
    std::ostream& output;
    std::ostream& error;

    void print(std::string_view line) const { output << line << '\n' << std::flush; }
    void complain(std::string_view line) const { error << line << '\n' << std::flush; }
};

} // namespace flowtide
