// How a track is turned and flipped for display.
#pragma once

#include <array>
#include <cstdint>

namespace flowtide {

/// x' = a·x + c·y + tx, y' = b·x + d·y + ty.
struct AffineTransform {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    /// Every entry within 1e-6 of the identity's.
    bool isIdentity() const;
    friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

/// A transform as a movie's track header stores it: rows of a, b, u, c, d, v, tx, ty, w, in 16.16 fixed point, the
/// third column in 2.30.
using DisplayMatrix = std::array<std::int32_t, 9>;
constexpr DisplayMatrix identityDisplayMatrix{65536, 0, 0, 0, 65536, 0, 0, 0, 1 << 30};

/// The transform that a display matrix stands for.
AffineTransform affineTransform(const DisplayMatrix& matrix);

/// Quarter turns and flips: columns and rows change places, then each axis may be reversed.
struct QuarterTurn {
    bool transposes = false;
    bool reversesColumns = false; ///< of the upright picture
    bool reversesRows = false;
    friend bool operator==(const QuarterTurn&, const QuarterTurn&) = default;
};

/// The turn that a transform stands for; none when it is anything but quarter turns and flips.
QuarterTurn quarterTurn(const AffineTransform& orientation);

} // namespace flowtide
