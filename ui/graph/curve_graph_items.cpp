#include "ui/graph/curve_graph_items.h"

#include "ui/graph/curve_graph.h"

#include <algorithm>
#include <utility>

namespace flowtide {

namespace {

constexpr double pointSize = 16; ///< pixels, with its outline and what belongs to it
constexpr double nudgesInStep = 20;

} // namespace

CurveGraphItems::CurveGraphItems(QWidget& graph, TimelineContext& context, CurveGraphInput& input,
                                 std::function<CurveGraphGeometry()> geometry)
    : context_(context)
    , input_(input)
    , geometry_(std::move(geometry))
    , tree_(graph, *this, QAccessible::Chart) {}

std::vector<Uuid> CurveGraphItems::itemIds() const {
    played_ = playedPoints(input_.points(), context_.trim(), context_.duration());
    std::vector<Uuid> ids;
    ids.reserve(played_.size());
    numbers_.clear();
    count_ = 0;
    for (const SpeedKeyframe& point : played_) {
        ids.push_back(point.id);
        numbers_.push_back(point.role == SpeedKeyframeRole::curve ? ++count_ : 0);
    }
    return ids;
}

std::optional<AccessibleItem> CurveGraphItems::accessibleItem(const Uuid& id, std::size_t index) const {
    if (index >= played_.size() || played_[index].id != id) return {};
    const SpeedKeyframe& point = played_[index];
    const CurveEditorAxis axis = input_.axis();
    AccessibleItem item;
    const QString seconds = QString::number(point.time, 'f', 3);
    const QString value = axis.format(point.speed);
    if (point.role == SpeedKeyframeRole::curve)
        item.name =
            CurveGraph::tr("Point %1 of %2, %3 seconds, %4").arg(numbers_[index]).arg(count_).arg(seconds, value);
    else if (point.role == SpeedKeyframeRole::trimStart)
        item.name = CurveGraph::tr("Trim start, %1 seconds, %2").arg(seconds, value);
    else
        item.name = CurveGraph::tr("Trim end, %1 seconds, %2").arg(seconds, value);
    const CurveGraphGeometry geometry = geometry_();
    if (geometry.time.shows(point.time))
        item.place = QRectF(geometry.placeOf(point) - QPointF(pointSize, pointSize) / 2, QSizeF(pointSize, pointSize));
    item.isSelected = context_.points().contains(id);
    item.value = {point.speed, axis.limits.lower, axis.limits.upper,
                  (axis.limits.upper - axis.limits.lower) / nudgesInStep};
    return item;
}

QString CurveGraphItems::itemSummary() const {
    if (const auto single = currentItem())
        if (const auto item = tree_.item(*single)) return item->name;
    const std::size_t selected = context_.points().ids().size();
    return selected > 0 ? CurveGraph::tr("%1 points selected").arg(selected)
                        : CurveGraph::tr("%1 points").arg(tree_.count());
}

void CurveGraphItems::pressItem(const Uuid& id) {
    const SpeedKeyframes& points = input_.points();
    const auto point = std::find_if(points.begin(), points.end(), [&](const auto& each) { return each.id == id; });
    if (point == points.end()) return;
    context_.points().select({id});
    context_.reveal(point->time);
}

void CurveGraphItems::setItemValue(const Uuid& id, double value) {
    input_.replace(curvePointEdits::withValue(input_.points(), {id}, value));
}

} // namespace flowtide
