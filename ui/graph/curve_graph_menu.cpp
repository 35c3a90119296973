#include "ui/graph/curve_graph_menu.h"

#include "ui/graph/curve_graph.h"
#include "ui/key_names.h"

#include <QMenu>
#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {

bool isNear(double a, double b) {
    return std::abs(a - b) < 1e-9;
}

} // namespace

void openGraphMenu(QWidget& graph, TimelineContext& context, CurveGraphInput& input, QPointF place, bool canPaste,
                   const std::function<void(Command)>& perform) {
    PointSelection& selection = context.points();
    const auto point = input.pointAt(place);
    if (point && !selection.contains(*point)) selection.select({*point});
    const bool hasSelection = !selection.ids().empty();
    const CurveEditorAxis axis = input.axis();

    auto* menu = new QMenu(&graph);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto keyed = [](const QString& text, const QString& keys) { return text + u'\t' + keyNames::local(keys); };
    const double seconds = context.timeAt(place.x());
    const double value =
        input.placeAt(place) == GraphPlace::curve ? input.valueAt(seconds) : input.snappedValueAt(place.y(), false);
    menu->addAction(keyed(CurveGraph::tr("Add point here"), CurveGraph::tr("⌥ click")), &graph,
                    [&input, seconds, value] { input.addPoint(seconds, value); })
        ->setEnabled(!point && !curvePointEdits::pointNear(input.points(), seconds, input.span()));
    QMenu* values = menu->addMenu(axis.valueLabel);
    values->setEnabled(hasSelection);
    for (const CurveEditorAxis::Preset& preset : axis.presets) {
        QAction* action = values->addAction(preset.label, &graph, [&input, &selection, chosen = preset.value] {
            input.replace(curvePointEdits::withValue(input.points(), selection.ids(), chosen));
        });
        action->setCheckable(true);
        action->setChecked(hasSelection &&
                           std::all_of(input.points().begin(), input.points().end(), [&](const SpeedKeyframe& each) {
                               return !selection.contains(each.id) || isNear(each.speed, preset.value);
                           }));
    }
    menu->addSeparator();
    const auto add = [&](const QString& text, const QString& keys, Command command, bool isEnabled) {
        menu->addAction(keyed(text, keys), &graph, [perform, command] { perform(command); })->setEnabled(isEnabled);
    };
    add(CurveGraph::tr("Copy"), QStringLiteral("⌘C"), Command::copyPoints, hasSelection);
    add(CurveGraph::tr("Paste"), QStringLiteral("⌘V"), Command::pastePoints, canPaste);
    add(CurveGraph::tr("Delete"), CurveGraph::tr("Delete", "the key"), Command::deletePoints, hasSelection);
    menu->addSeparator();
    FlowtideViewModel& model = context.model();
    if (context.isFraming())
        menu->addAction(CurveGraph::tr("Reset framing"), &graph, [&model] { model.resetCenterCurve(); });
    else
        menu->addAction(CurveGraph::tr("Reset curve"), &graph, [&model] { model.resetCurve(); });
    menu->popup(graph.mapToGlobal(place.toPoint()));
}

} // namespace flowtide
