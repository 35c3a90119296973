// Which points of the curve in the graph are selected.
#pragma once

#include "core/uuid.h"

#include <QObject>
#include <optional>
#include <set>

namespace flowtide {

/// Shared by the graph and the inspector. Of the active curve; another curve or clip begins without a selection.
class PointSelection final : public QObject {
    Q_OBJECT

public:
    using Ids = std::set<Uuid>;

    const Ids& ids() const { return ids_; }
    bool contains(const Uuid& id) const { return ids_.contains(id); }
    /// The one that is selected, when it is one.
    std::optional<Uuid> single() const { return ids_.size() == 1 ? std::optional(*ids_.begin()) : std::nullopt; }

    void select(Ids ids) {
        if (ids == ids_) return;
        ids_ = std::move(ids);
        emit changed();
    }
    void clear() { select({}); }

signals:
    void changed();

private:
    Ids ids_;
};

} // namespace flowtide
