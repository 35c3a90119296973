// Display matrices as transforms.
#include "media/orientation.h"

#include <cmath>
#include <cstddef>

namespace flowtide {

bool AffineTransform::isIdentity() const {
    constexpr double tolerance = 1e-6;
    const auto near = [](double value, double wanted) { return std::abs(value - wanted) <= tolerance; };
    return near(a, 1) && near(b, 0) && near(c, 0) && near(d, 1) && near(tx, 0) && near(ty, 0);
}

AffineTransform affineTransform(const DisplayMatrix& matrix) {
    const auto entry = [&](std::size_t i) { return static_cast<double>(matrix[i]) / 65536.0; };
    return {entry(0), entry(1), entry(3), entry(4), entry(6), entry(7)};
}

QuarterTurn quarterTurn(const AffineTransform& orientation) {
    const auto near = [](double value, double wanted) { return std::abs(value - wanted) < 1e-6; };
    const auto isUnit = [&](double value) { return near(std::abs(value), 1); };
    if (isUnit(orientation.a) && isUnit(orientation.d) && near(orientation.b, 0) && near(orientation.c, 0))
        return {false, orientation.a < 0, orientation.d < 0};
    if (isUnit(orientation.b) && isUnit(orientation.c) && near(orientation.a, 0) && near(orientation.d, 0))
        return {true, orientation.c < 0, orientation.b < 0};
    return {};
}

} // namespace flowtide
