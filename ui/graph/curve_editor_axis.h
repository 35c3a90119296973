// What the vertical direction of the graph means: one axis for speed, one for the crop's centre.
#pragma once

#include <QColor>
#include <QString>
#include <optional>
#include <vector>

namespace flowtide {

/// A closed range of a curve's values.
struct ValueRange {
    double lower = 0;
    double upper = 1;
    bool contains(double value) const { return value >= lower && value <= upper; }
    friend bool operator==(const ValueRange&, const ValueRange&) = default;
};

struct CurveEditorAxis {
    /// A value that a point's menu offers.
    struct Preset {
        QString label;
        double value = 0;
    };

    ValueRange limits;                              ///< what a point may have
    std::optional<ValueRange> defaultDisplayLimits; ///< shown when no point asks for more; without them the limits
    bool isLogScale = false;
    std::vector<double> gridValues;    ///< ascending; what is dragged snaps to them
    double emphasizedGridValue = 0;    ///< the grid line that is drawn stronger
    double boundaryValue = 0;          ///< what a trim edge goes back to
    bool showsSlowMotionGuide = false; ///< below which motion needs in-between frames
    QString valueLabel;
    QColor strokeColor;
    std::vector<Preset> presets;
    QString snapHint;
    QString (*format)(double value) = nullptr;

    static CurveEditorAxis speed();
    static CurveEditorAxis cropCenter();

    ValueRange usualWindow() const { return defaultDisplayLimits.value_or(limits); }
};

} // namespace flowtide
