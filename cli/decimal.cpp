// Reading and writing of decimal numbers.
#include "cli/decimal.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <system_error>

namespace flowtide::HeadlessExport {

std::optional<double> parseDecimal(std::string_view text) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') return std::nullopt;
    }
    // The library would also take "inf" and "nan".
    if (text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too small to tell from zero is a number; too large is none.
        const auto exponent = text.find_first_of("eE");
        const bool tiny = exponent != std::string_view::npos && text.substr(exponent + 1).starts_with('-');
        return tiny ? std::optional<double>(0.0) : std::nullopt;
    }
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::string shortestDecimal(double value) {
    std::string text = fmt::format("{}", value);
    if (text.find_first_of(".en") == std::string::npos) text += ".0";
    return text;
}

} // namespace flowtide::HeadlessExport
