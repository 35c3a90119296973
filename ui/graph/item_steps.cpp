#include "ui/graph/item_steps.h"

#include <algorithm>

namespace flowtide {

int itemStep(const QKeyEvent& event) {
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::ShiftModifier) return 0;
    return (event.key() == Qt::Key_Down) - (event.key() == Qt::Key_Up);
}

std::optional<std::size_t> steppedItem(std::span<const double> times, std::optional<std::size_t> current, double time,
                                       int step) {
    if (times.empty()) return {};
    const auto count = static_cast<std::ptrdiff_t>(times.size());
    std::ptrdiff_t to = 0;
    if (current) {
        to = static_cast<std::ptrdiff_t>(*current) + step;
    } else {
        // What begins right at the time is the next in both directions.
        const auto next = step > 0 ? std::lower_bound(times.begin(), times.end(), time)
                                   : std::upper_bound(times.begin(), times.end(), time) - 1;
        to = next - times.begin();
    }
    return static_cast<std::size_t>(std::clamp(to, std::ptrdiff_t{0}, count - 1));
}

} // namespace flowtide
