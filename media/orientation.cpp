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

} // namespace flowtide
