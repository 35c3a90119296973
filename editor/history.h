// What can be undone and redone, and the gesture in progress.
#pragma once

#include "editor/change_notifier.h"
#include "editor/curve_snapshot.h"

#include <optional>
#include <vector>

namespace flowtide {

/// Two stacks of states, oldest first. Knows nothing of how states are taken or installed.
class History {
public:
    static constexpr std::size_t maxHistoryCount = 200;

    explicit History(ChangeNotifier& notifier)
        : notifier_(notifier) {}

    const std::vector<CurveSnapshot>& undoStack() const { return undoStack_; }
    const std::vector<CurveSnapshot>& redoStack() const { return redoStack_; }

    /// The state at the start of the gesture in progress; nothing between gestures.
    const std::optional<CurveSnapshot>& pendingUndoSnapshot() const { return pendingUndoSnapshot_; }
    void setPendingUndoSnapshot(std::optional<CurveSnapshot> snapshot) { pendingUndoSnapshot_ = std::move(snapshot); }

    /// A new edit: what was undone before it is gone, and of the steps the oldest beyond the limit.
    void pushUndoSnapshot(CurveSnapshot snapshot);

    /// The state to install, `current` taken in exchange; nothing when there is none.
    std::optional<CurveSnapshot> undo(const CurveSnapshot& current) {
        return exchange(undoStack_, redoStack_, current);
    }
    std::optional<CurveSnapshot> redo(const CurveSnapshot& current) {
        return exchange(redoStack_, undoStack_, current);
    }

    void clear();

private:
    std::optional<CurveSnapshot> exchange(std::vector<CurveSnapshot>& from, std::vector<CurveSnapshot>& to,
                                          const CurveSnapshot& current);

    ChangeNotifier& notifier_;
    std::vector<CurveSnapshot> undoStack_;
    std::vector<CurveSnapshot> redoStack_;
    std::optional<CurveSnapshot> pendingUndoSnapshot_;
};

} // namespace flowtide
