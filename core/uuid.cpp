// Draws random identifiers, and reads and writes their canonical text.
#include "core/uuid.h"

#include <cstddef>
#include <random>

namespace flowtide {
namespace {

constexpr std::size_t textLength = 36;

/// Whether a hyphen precedes the byte's two digits.
constexpr bool hyphenBefore(std::size_t byte) {
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A') + 10;
    return std::nullopt;
}

} // namespace

Uuid Uuid::random() {
    std::random_device entropy;
    Uuid result;
    for (std::size_t i = 0; i < result.bytes.size(); i += 4) {
        const auto word = static_cast<std::uint32_t>(entropy());
        for (std::size_t j = 0; j < 4; ++j) {
            result.bytes[i + j] = static_cast<std::uint8_t>((word >> (8 * j)) & 0xFFu);
        }
    }
    // RFC 4122: version 4 and its variant.
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0Fu) | 0x40u);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3Fu) | 0x80u);
    return result;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textLength) return std::nullopt;
    Uuid result;
    std::size_t at = 0;
    for (std::size_t i = 0; i < result.bytes.size(); ++i) {
        if (hyphenBefore(i) && text[at++] != '-') return std::nullopt;
        const auto high = hexDigit(text[at++]);
        const auto low = hexDigit(text[at++]);
        if (!high || !low) return std::nullopt;
        result.bytes[i] = static_cast<std::uint8_t>((*high << 4) | *low);
    }
    return result;
}

std::string Uuid::text() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    result.reserve(textLength);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (hyphenBefore(i)) result += '-';
        result += digits[bytes[i] >> 4];
        result += digits[bytes[i] & 0x0Fu];
    }
    return result;
}

} // namespace flowtide
