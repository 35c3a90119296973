// Reads and writes decimal numbers through the library's functions that know no locale.
#include "cli/decimal.h"

#include <fmt/format.h>
#include <locale.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace flowtide::HeadlessExport {

namespace {

struct LocaleDeleter {
    void operator()(locale_t locale) const { ::freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleDeleter>;

} // namespace

std::optional<double> parseDecimal(std::string_view text) {
    // The library would also take blanks, "inf", "nan" and hexadecimal.
    if (text.empty() || text.find_first_not_of("0123456789.eE+-") != std::string_view::npos) return std::nullopt;
    // A toolkit may set the process's locale to one with a decimal comma.
    static const Locale classic(::newlocale(LC_ALL_MASK, "C", nullptr));
    const std::string terminated(text);
    char* end = nullptr;
    const double value = ::strtod_l(terminated.c_str(), &end, classic.get());
    if (end != terminated.c_str() + terminated.size() || !std::isfinite(value)) return std::nullopt;
    return value + 0.0; // makes "-0" plain zero
}

std::string shortestDecimal(double value) {
    std::string text = fmt::format("{}", value);
    if (text.find_first_of(".en") == std::string::npos) text += ".0";
    return text;
}

} // namespace flowtide::HeadlessExport
