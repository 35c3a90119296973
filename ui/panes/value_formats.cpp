#include "ui/panes/value_formats.h"

#include "core/crop_framing.h"
#include "core/speed_keyframe.h"
#include "ui/value_text.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide::valueFormats {

namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("ValueFormats", text);
}

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
            translated("Type a time, as 00:02.120.")};
}

Field::Format speed() {
    return {valueText::speed, valueText::parsedSpeed, steppedSpeed, translated("Type a speed, as 0.25x or 25%.")};
}

Field::Format position() {
    return {valueText::position, valueText::parsedPosition, steppedPercent,
            translated("Type a position, as 71% or Left.")};
}

Field::Format share() {
    return {[](double share) { return QStringLiteral("%1%").arg(std::lround(share * 100)); },
            [](const QString& text) { return valueText::parsedPosition(text); }, steppedPercent};
}

std::vector<Field::Preset> speedPresets() {
    std::vector<Field::Preset> presets{{QStringLiteral("1%"), 0.01}, {QStringLiteral("5%"), 0.05}};
    for (const double value : {0.1, 0.25, 0.5, 1.0, 2.0, 4.0, 10.0, 20.0, 50.0, 100.0})
        presets.push_back({valueText::speed(value), value});
    return presets;
}

std::vector<Field::Preset> positionPresets() {
    std::vector<Field::Preset> presets;
    for (const double value : {leftmostCrop, 0.25, centeredCrop, 0.75, rightmostCrop})
        presets.push_back({valueText::position(value), value});
    return presets;
}

} // namespace flowtide::valueFormats
