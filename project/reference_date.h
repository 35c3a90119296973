// Points in time as project documents store them.
#pragma once

#include <chrono>
#include <compare>

namespace flowtide {

/// Seconds since 2001-01-01 00:00:00 UTC, a double, so that a date that is read and written again keeps every bit.
struct ReferenceDate {
    double seconds = 0;

    static ReferenceDate now() {
        // From 1970 to 2001: 31 years, eight of them leap years.
        constexpr double unixSecondsOf2001 = 978'307'200;
        const std::chrono::duration<double> sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
        return {sinceUnixEpoch.count() - unixSecondsOf2001};
    }

    friend auto operator<=>(const ReferenceDate&, const ReferenceDate&) = default;
};

} // namespace flowtide
