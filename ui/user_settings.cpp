#include "ui/user_settings.h"

#include "core/slow_motion_guide.h"

#include <algorithm>
#include <cmath>

namespace flowtide {

namespace {
constexpr const char* splitKey = "workspace.previewSplitRatio";
constexpr const char* sidebarKey = "workspace.sidebarVisible";
constexpr const char* inspectorKey = "workspace.inspectorVisible";
constexpr const char* lastSeenVersionKey = "whatsNew.lastSeenVersion";
} // namespace

UserSettings::UserSettings()
    : settings_(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Loftwell Video"),
                QStringLiteral("Flowtide")) {}

UserSettings::UserSettings(const QString& file)
    : settings_(file, QSettings::IniFormat) {}

double UserSettings::previewSplitRatio() const {
    bool isNumber = false;
    const double ratio = settings_.value(splitKey, defaultSplitRatio).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(ratio)) return defaultSplitRatio;
    return std::clamp(ratio, lowestSplitRatio, highestSplitRatio);
}

void UserSettings::setPreviewSplitRatio(double ratio) {
    settings_.setValue(splitKey, ratio);
}

bool UserSettings::sidebarVisible() const {
    return settings_.value(sidebarKey, true).toBool();
}

void UserSettings::setSidebarVisible(bool visible) {
    settings_.setValue(sidebarKey, visible);
}

bool UserSettings::inspectorVisible() const {
    return settings_.value(inspectorKey, true).toBool();
}

void UserSettings::setInspectorVisible(bool visible) {
    settings_.setValue(inspectorKey, visible);
}

double UserSettings::smoothMotionFrameRate() const {
    return SlowMotionGuide::motionFrameRateFloor(settings_.value(SlowMotionGuide::settingKey, 0).toDouble());
}

void UserSettings::setSmoothMotionFrameRate(double rate) {
    settings_.setValue(SlowMotionGuide::settingKey, rate);
}

QString UserSettings::lastSeenVersion() const {
    return settings_.value(lastSeenVersionKey).toString();
}

void UserSettings::setLastSeenVersion(const QString& version) {
    settings_.setValue(lastSeenVersionKey, version);
}

} // namespace flowtide
