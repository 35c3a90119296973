// The one alert of a window.
#pragma once

#include "editor/change_notifier.h"

#include <optional>
#include <string>
#include <utility>

namespace flowtide {

/// What the alert says: a sentence, and why, when there is more to say.
struct ErrorMessage {
    std::string sentence;
    std::string reason;
    friend bool operator==(const ErrorMessage&, const ErrorMessage&) = default;
};

/// Shown until it is dismissed; a later message replaces an earlier one.
class ErrorAlert {
public:
    explicit ErrorAlert(ChangeNotifier& notifier)
        : message_(notifier, Property::errorMessage) {}

    const std::optional<ErrorMessage>& errorMessage() const { return message_.get(); }
    bool showError() const { return errorMessage().has_value(); }
    void show(std::string sentence, std::string reason = {}) {
        message_.set(ErrorMessage{std::move(sentence), std::move(reason)});
    }
    void dismiss() { message_.set({}); }

private:
    Observed<std::optional<ErrorMessage>> message_;
};

} // namespace flowtide
