#include "ui/graph/curve_editor_axis.h"

#include "core/crop_framing.h"
#include "core/speed_keyframe.h"
#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QCoreApplication>
#include <initializer_list>
#include <utility>

namespace flowtide {

namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("CurveEditorAxis", text);
}

QString hintOfSnapping() {
    return keyNames::local(translated(QT_TRANSLATE_NOOP("CurveEditorAxis", "⌘ drag to bypass snapping.")));
}

} // namespace

CurveEditorAxis CurveEditorAxis::speed() {
    CurveEditorAxis axis;
    axis.limits = {lowestSpeed, highestSpeed};
    axis.defaultDisplayLimits = ValueRange{0.1, 4};
    axis.isLogScale = true;
    axis.gridValues = {0.01, 0.05, 0.1, 0.25, 0.5, 1, 2, 4, 10, 20, 50, 100};
    axis.emphasizedGridValue = realTimeSpeed;
    axis.boundaryValue = realTimeSpeed;
    axis.showsSlowMotionGuide = true;
    axis.valueLabel = translated(QT_TRANSLATE_NOOP("CurveEditorAxis", "Speed"));
    axis.strokeColor = theme::curve;
    for (const auto& [label, value] : std::initializer_list<std::pair<const char*, double>>{{"1%", 0.01},
                                                                                            {"5%", 0.05},
                                                                                            {"0.1x", 0.1},
                                                                                            {"0.25x", 0.25},
                                                                                            {"0.5x", 0.5},
                                                                                            {"1x", 1},
                                                                                            {"2x", 2},
                                                                                            {"4x", 4},
                                                                                            {"10x", 10},
                                                                                            {"20x", 20},
                                                                                            {"50x", 50},
                                                                                            {"100x", 100}})
        axis.presets.push_back({QString::fromUtf8(label), value});
    axis.snapHint = hintOfSnapping();
    axis.format = valueText::speed;
    return axis;
}

CurveEditorAxis CurveEditorAxis::cropCenter() {
    CurveEditorAxis axis;
    axis.limits = {leftmostCrop, rightmostCrop};
    axis.gridValues = {0, 0.25, 0.5, 0.75, 1};
    axis.emphasizedGridValue = centeredCrop;
    axis.boundaryValue = centeredCrop;
    axis.valueLabel = translated(QT_TRANSLATE_NOOP("CurveEditorAxis", "Position"));
    axis.strokeColor = theme::framing;
    for (const double value : axis.gridValues)
        axis.presets.push_back({valueText::position(value), value});
    axis.snapHint = hintOfSnapping();
    axis.format = valueText::position;
    return axis;
}

} // namespace flowtide
