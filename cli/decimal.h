// Numbers of the command line, the same in every locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace flowtide::HeadlessExport {

/// A whole text as a decimal number: an optional sign, digits with an optional point, an optional exponent. Blanks,
/// units, "inf", "nan", hexadecimal and numbers too large to be finite give nothing.
std::optional<double> parseDecimal(std::string_view text);

/// The shortest decimal form that reads back to the same value, with at least one decimal: "0.005", "3.0".
std::string shortestDecimal(double value);

} // namespace flowtide::HeadlessExport
