// The stacks.
#include "editor/history.h"

#include <utility>

namespace flowtide {

void History::pushUndoSnapshot(CurveSnapshot snapshot) {
    undoStack_.push_back(std::move(snapshot));
    if (undoStack_.size() > maxHistoryCount)
        undoStack_.erase(undoStack_.begin(),
                         undoStack_.begin() + static_cast<std::ptrdiff_t>(undoStack_.size() - maxHistoryCount));
    redoStack_.clear();
    notifier_.changed(Property::history);
}

std::optional<CurveSnapshot> History::exchange(std::vector<CurveSnapshot>& from, std::vector<CurveSnapshot>& to,
                                               const CurveSnapshot& current) {
    if (from.empty()) return std::nullopt;
    CurveSnapshot wanted = std::move(from.back());
    from.pop_back();
    to.push_back(current); // without the limit: only new edits make the history shorter
    notifier_.changed(Property::history);
    return wanted;
}

void History::clear() {
    pendingUndoSnapshot_.reset();
    if (undoStack_.empty() && redoStack_.empty()) return;
    undoStack_.clear();
    redoStack_.clear();
    notifier_.changed(Property::history);
}

} // namespace flowtide
