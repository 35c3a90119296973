#include "ui/panes/value_formats.h"

#include "core/speed_keyframe.h"
#include "ui/value_text.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide::valueFormats {

namespace {

double steppedPercent(double value, int steps) {
    return std::clamp((std::round(value * 100) + steps) / 100, 0.0, 1.0);
}

double steppedSpeed(double speed, int steps) {
    // The digit that is shown last is another one below 1, below 10 and above.
    const bool isUp = steps > 0;
    for (int left = std::abs(steps); left > 0; --left) {
        const bool isFine = isUp ? speed < 1 - 1e-9 : speed <= 1 + 1e-9;
        const bool isMiddle = isUp ? speed < 10 - 1e-9 : speed <= 10 + 1e-9;
        const double inverse = isFine ? 100 : isMiddle ? 10 : 1;
        speed = (std::round(speed * inverse) + (isUp ? 1 : -1)) / inverse;
    }
    return std::clamp(speed, lowestSpeed, highestSpeed);
}

} // namespace

Field::Format time(std::function<double()> frameSeconds) {
    return {valueText::timeCode, valueText::parsedTime,
            [frame = std::move(frameSeconds)](double seconds, int steps) {
                return std::max(seconds + steps * frame(), 0.0);
            },
            QCoreApplication::translate("ValueFormats", "Type a time, as 00:02.120.")};
}

Field::Format speed() {
    return {valueText::speed, valueText::parsedSpeed, steppedSpeed,
            QCoreApplication::translate("ValueFormats", "Type a speed, as 0.25x or 25%.")};
}

Field::Format position() {
    return {valueText::position, valueText::parsedPosition, steppedPercent,
            QCoreApplication::translate("ValueFormats", "Type a position, as 71% or Left.")};
}

Field::Format share() {
    return {[](double share) { return QStringLiteral("%1%").arg(std::lround(share * 100)); },
            [](const QString& text) { return valueText::parsedPosition(text); }, steppedPercent};
}

std::vector<Field::Preset> presets(const CurveEditorAxis& axis) {
    std::vector<Field::Preset> presets;
    for (const CurveEditorAxis::Preset& preset : axis.presets)
        presets.push_back({preset.label, preset.value});
    return presets;
}

} // namespace flowtide::valueFormats
