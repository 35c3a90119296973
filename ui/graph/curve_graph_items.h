// The points of the curve, for those who do not see them.
#pragma once

#include "ui/accessible_items.h"
#include "ui/graph/curve_graph_input.h"

#include <functional>

namespace flowtide {

/// Outlived by the graph, its input and the context.
class CurveGraphItems final : public AccessibleSource {
public:
    CurveGraphItems(QWidget& graph, TimelineContext& context, CurveGraphInput& input,
                    std::function<CurveGraphGeometry()> geometry);

    AccessibleItems& tree() { return tree_; }

    std::vector<Uuid> itemIds() const override;
    std::optional<AccessibleItem> accessibleItem(const Uuid& id, std::size_t index) const override;
    std::optional<Uuid> currentItem() const override { return context_.points().single(); }
    std::optional<Uuid> itemUnder(QPointF place) const override { return input_.pointAt(place); }
    QString itemSummary() const override;
    /// Selects a point, and brings it into sight.
    void pressItem(const Uuid& id) override;
    void setItemValue(const Uuid& id, double value) override;

private:
    TimelineContext& context_;
    CurveGraphInput& input_;
    std::function<CurveGraphGeometry()> geometry_;
    // When itemIds() was last asked:
    mutable SpeedKeyframes played_;
    mutable std::vector<int> numbers_; ///< from 1, without the trim's ends, as the inspector counts
    mutable int count_ = 0;
    AccessibleItems tree_;
};

} // namespace flowtide
