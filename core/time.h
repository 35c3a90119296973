// Seconds of two time bases that must never mix: the source clip's and the retimed output's.
#pragma once

#include <compare>

namespace flowtide {

/// A point in the source clip, in seconds from the clip's start.
struct SourceSeconds {
    double value = 0;
    friend auto operator<=>(const SourceSeconds&, const SourceSeconds&) = default;
};

/// A point in the retimed output, in seconds from its start. Converts to SourceSeconds only through a TimeMap.
struct OutputSeconds {
    double value = 0;
    friend auto operator<=>(const OutputSeconds&, const OutputSeconds&) = default;
};

/// A closed range of source seconds; a trim, or a stretch of the curve. Its name is its time base: the ends are bare.
struct SourceRange {
    double lower = 0;
    double upper = 0;
    friend bool operator==(const SourceRange&, const SourceRange&) = default;
};

} // namespace flowtide
