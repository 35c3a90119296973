// The panes of an open project and their places.
#pragma once

#include "ui/motion.h"
#include "ui/user_settings.h"

#include <QWidget>
#include <functional>

namespace flowtide {

/// The panes, which belong to the workspace from then on.
struct WorkspacePanes {
    QWidget* sidebar;
    QWidget* inspector;
    QWidget* viewer;
    QWidget* transport;
    QWidget* timeline;
};

/// Where panes go in a workspace of some size; a function on values.
struct WorkspaceLayout {
    static constexpr int sidebarWidth = 240;
    static constexpr int inspectorWidth = 264;
    static constexpr int transportHeight = 52;
    static constexpr int sidebarDrawerBelow = 1240;
    static constexpr int inspectorDrawerBelow = 1000;
    static constexpr int lowestPicture = 160;
    static constexpr int picturePadding = 12;

    QRect sidebar;   ///< empty when it is hidden
    QRect inspector; ///< empty when it is hidden
    QRect viewer;
    QRect transport;
    QRect timeline;
    bool sidebarIsDrawer = false;
    bool inspectorIsDrawer = false;

    /// `splitRatio`: the share of the height for viewer and transport. `lowestTimeline`: the height that the timeline
    /// needs.
    static WorkspaceLayout of(QSize size, bool showsSidebar, bool showsInspector, double splitRatio,
                              int lowestTimeline);
};

/// Keeps which panes are shown and how the height is shared, between runs too. Panes that have no room beside the
/// viewer are drawers above it; opening one of these is not kept.
class Workspace final : public QWidget {
    Q_OBJECT

public:
    Workspace(WorkspacePanes panes, UserSettings& settings, QWidget* parent = nullptr);

    void toggleSidebar();
    void toggleInspector();
    bool showsSidebar() const;
    bool showsInspector() const;
    /// Closes an open drawer; false when there is none.
    bool closeDrawer();
    /// Called when panes are shown or hidden.
    std::function<void()> onPanesChanged;
    /// In place of viewer and timeline; null: none. The workspace takes it over.
    void setCover(QWidget* cover);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Divider;
    void place();
    void setSplit(double ratio);
    WorkspaceLayout layoutNow() const;
    void toggle(bool isDrawer, bool& isOpen, Fade& drawer, bool isShown, void (UserSettings::*keep)(bool));

    WorkspacePanes panes_;
    UserSettings& settings_;
    Divider* divider_; ///< child
    QWidget* cover_ = nullptr;
    bool sidebarOpen_ = false;   ///< as a drawer
    bool inspectorOpen_ = false; ///< as a drawer
    Fade sidebarDrawer_;
    Fade inspectorDrawer_;
};

} // namespace flowtide
