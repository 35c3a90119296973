// What is kept between runs for all projects: how the window is laid out, and the user's choices.
#pragma once

#include <QSettings>
#include <QString>

namespace flowtide {

/// On the main thread. Values that a damaged file holds are brought back into their ranges.
class UserSettings {
public:
    static constexpr double defaultSplitRatio = 0.49;
    static constexpr double lowestSplitRatio = 0.25;
    static constexpr double highestSplitRatio = 0.75;

    UserSettings();
    /// Kept in a file of its own.
    explicit UserSettings(const QString& file);

    /// The share of the height that the viewer has against the timeline.
    double previewSplitRatio() const;
    void setPreviewSplitRatio(double ratio);
    bool sidebarVisible() const;
    void setSidebarVisible(bool visible);
    bool inspectorVisible() const;
    void setInspectorVisible(bool visible);

    /// Frames per second, one of SlowMotionGuide's.
    double smoothMotionFrameRate() const;
    void setSmoothMotionFrameRate(double rate);

    /// The version whose notes the user has seen; empty before the first.
    QString lastSeenVersion() const;
    void setLastSeenVersion(const QString& version);

private:
    mutable QSettings settings_;
};

} // namespace flowtide
