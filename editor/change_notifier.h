// How views hear of changes: once per turn of the main loop, and only of real ones.
#pragma once

#include "editor/property.h"
#include "editor/scheduler.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace flowtide {

using ChangeHandler = std::function<void(const PropertySet& changed)>;

/// Ends with the object. It may outlive the notifier.
class Subscription {
public:
    Subscription() = default;

private:
    friend class ChangeNotifier;
    explicit Subscription(std::shared_ptr<void> entry)
        : entry_(std::move(entry)) {}
    std::shared_ptr<void> entry_;
};

/// Gathers changes during a turn of the main loop and tells of them in the next one. Main thread only.
class ChangeNotifier {
public:
    explicit ChangeNotifier(Scheduler& scheduler);

    /// `handler` is called with those of the wanted properties that changed, when there are any. It may change
    /// properties, subscribe and end subscriptions.
    [[nodiscard]] Subscription subscribe(PropertySet wanted, ChangeHandler handler);

    void changed(Property property);

private:
    struct Entry {
        PropertySet wanted;
        ChangeHandler handler;
    };
    struct State {
        std::vector<std::weak_ptr<Entry>> entries;
        PropertySet pending;
    };
    static void deliver(State& state);

    Scheduler& scheduler_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// A value that views see. Setting it to what it is already tells nobody.
template <typename Value>
class Observed {
public:
    Observed(ChangeNotifier& notifier, Property property, Value value = {})
        : notifier_(notifier)
        , property_(property)
        , value_(std::move(value)) {}

    const Value& get() const { return value_; }

    /// Whether it was a change.
    bool set(Value value) {
        if (value == value_) return false;
        value_ = std::move(value);
        notifier_.changed(property_);
        return true;
    }

private:
    ChangeNotifier& notifier_;
    Property property_;
    Value value_;
};

} // namespace flowtide
