// The graph's menu.
#pragma once

#include "ui/graph/curve_graph_input.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

/// Opens it at a place of the graph. A point there is selected first, unless it is already.
void openGraphMenu(QWidget& graph, TimelineContext& context, CurveGraphInput& input, QPointF place, bool canPaste,
                   const std::function<void(Command)>& perform);

} // namespace flowtide
