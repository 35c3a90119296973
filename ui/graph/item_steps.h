// From one item of a lane to the next by keyboard.
#pragma once

#include <QKeyEvent>
#include <cstddef>
#include <optional>
#include <span>

namespace flowtide {

/// -1 or +1 for the keys that go to the item before or after; 0 for all others.
int itemStep(const QKeyEvent& event);

/// The item before (-1) or after (+1) the current one, or else next to a time; at the ends it stays. `times`: when the
/// items begin, ascending. Nothing where there are none.
std::optional<std::size_t> steppedItem(std::span<const double> times, std::optional<std::size_t> current, double time,
                                       int step);

} // namespace flowtide
