// Identifiers of keyframes, ranges, blocks, projects and temporary files.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace flowtide {

/// A 128-bit identifier; its text form is the canonical upper-case one.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh random (version 4) identifier.
    static Uuid random();
    /// Reads the canonical 36-character form in either letter case; nothing when it is anything else.
    static std::optional<Uuid> parse(std::string_view text);
    /// For example "3F2504E0-4F89-41D3-9A0C-0305E82C3301".
    std::string text() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

} // namespace flowtide
