// The text form of opaque bytes in project documents.
#pragma once

#include <string_view>

namespace flowtide {

/// Whether a text is Base64 (RFC 4648: the plain alphabet, padded, no line breaks). The empty text is.
constexpr bool isBase64(std::string_view text) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (text.size() % 4 != 0) return false;
    for (int padding = 0; padding < 2 && text.ends_with('='); ++padding)
        text.remove_suffix(1);
    return text.find_first_not_of(alphabet) == std::string_view::npos;
}

} // namespace flowtide
