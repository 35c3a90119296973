// Percent-encoding of file paths.
#include "project/files/url.h"

#include <fmt/format.h>

#include <charconv>
#include <cstddef>
#include <string_view>

namespace flowtide {
namespace {

constexpr std::string_view scheme = "file:";

bool isLetterOrDigit(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// RFC 3986, pchar and the slash; without ";", which some readers take for the start of parameters.
bool staysPlain(char c) {
    return isLetterOrDigit(c) || std::string_view("-._~/!$&'()*+,=:@").find(c) != std::string_view::npos;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view lowerCasePrefix) {
    if (text.size() < lowerCasePrefix.size()) return false;
    for (std::size_t i = 0; i < lowerCasePrefix.size(); ++i) {
        const char c = text[i];
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (lower != lowerCasePrefix[i]) return false;
    }
    return true;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '%') {
            const std::string_view digits = text.substr(i + 1, 2);
            unsigned byte = 0;
            const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16).ptr;
            if (end - digits.data() != 2) return std::nullopt;
            c = static_cast<char>(byte);
            i += 2;
        }
        if (c == '\0') return std::nullopt;
        result += c;
    }
    return result;
}

} // namespace

Url Url::ofFile(const std::filesystem::path& path) {
    std::string text = "file://";
    for (const char c : std::filesystem::absolute(path).string()) {
        if (staysPlain(c))
            text += c;
        else
            text += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return {text};
}

std::optional<std::filesystem::path> Url::filePath() const {
    if (!startsWithIgnoringCase(text, scheme)) return std::nullopt;
    std::string_view rest = std::string_view(text).substr(scheme.size());
    rest = rest.substr(0, rest.find_first_of("?#"));
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        constexpr std::string_view ownHost = "localhost/";
        if (startsWithIgnoringCase(rest, ownHost)) rest.remove_prefix(ownHost.size() - 1);
    }
    if (!rest.starts_with('/')) return std::nullopt;
    const auto path = percentDecoded(rest);
    if (!path) return std::nullopt;
    return *path;
}

} // namespace flowtide
