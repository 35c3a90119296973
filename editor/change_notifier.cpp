// Delivery.
#include "editor/change_notifier.h"

namespace flowtide {

ChangeNotifier::ChangeNotifier(Scheduler& scheduler)
    : scheduler_(scheduler) {}

Subscription ChangeNotifier::subscribe(PropertySet wanted, ChangeHandler handler) {
    std::erase_if(state_->entries, [](const auto& entry) { return entry.expired(); });
    const auto entry = std::make_shared<Entry>(Entry{wanted, std::move(handler)});
    state_->entries.push_back(entry);
    return Subscription(entry);
}

void ChangeNotifier::changed(Property property) {
    if (state_->pending.none())
        scheduler_.post([weak = std::weak_ptr(state_)] {
            if (const auto state = weak.lock()) deliver(*state);
        });
    state_->pending.set(static_cast<std::size_t>(property));
}

void ChangeNotifier::deliver(State& state) {
    const PropertySet changed = std::exchange(state.pending, {});
    const auto entries = state.entries; // handlers may add to it
    for (const auto& weak : entries)
        if (const auto entry = weak.lock(); entry && (entry->wanted & changed).any())
            entry->handler(entry->wanted & changed);
}

} // namespace flowtide
