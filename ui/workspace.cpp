#include "ui/workspace.h"

#include "ui/accessible_role.h"
#include "ui/controls/drag_guard.h"
#include "ui/controls/focus_ring.h"
#include "ui/theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr int grabHeight = 8;
constexpr int keyboardStep = 16;
} // namespace

WorkspaceLayout WorkspaceLayout::of(QSize size, bool showsSidebar, bool showsInspector, double splitRatio,
                                    int lowestTimeline) {
    WorkspaceLayout layout;
    const int width = size.width();
    const int height = size.height();
    layout.sidebarIsDrawer = width < sidebarDrawerBelow;
    layout.inspectorIsDrawer = width < inspectorDrawerBelow;
    if (showsSidebar) layout.sidebar = QRect(0, 0, sidebarWidth, height);
    if (showsInspector) layout.inspector = QRect(width - inspectorWidth, 0, inspectorWidth, height);
    const int left = showsSidebar && !layout.sidebarIsDrawer ? sidebarWidth : 0;
    const int right = width - (showsInspector && !layout.inspectorIsDrawer ? inspectorWidth : 0);

    const int lowestAbove = lowestPicture + 2 * picturePadding + transportHeight;
    int above = static_cast<int>(std::lround(height * splitRatio));
    above = std::max(std::min(above, height - lowestTimeline), std::min(lowestAbove, height));
    layout.viewer = QRect(left, 0, right - left, std::max(above - transportHeight, 0));
    layout.transport = QRect(left, layout.viewer.height(), right - left, transportHeight);
    layout.timeline = QRect(left, above, right - left, std::max(height - above, 0));
    return layout;
}

/// Between the viewer and the timeline; lies on the line that it draws.
class Workspace::Divider final : public QWidget {
public:
    explicit Divider(Workspace& workspace)
        : QWidget(&workspace)
        , workspace_(workspace) {
        setCursor(Qt::SplitVCursor);
        setFocusPolicy(Qt::TabFocus);
        setFocusRing(*this, 2);
        setAccessibleRole(*this, QAccessible::Splitter);
        setAccessibleName(Workspace::tr("Divider"));
        setToolTip(Workspace::tr("Drag to resize the video and timeline areas"));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QRectF line(0, grabHeight / 2.0, width(), 1);
        if (underMouse() || isDragged_)
            painter.fillRect(theme::onPixels(painter, line.adjusted(0, -1, 0, 0)), theme::text3);
        else
            theme::drawHairline(painter, line, theme::Side::top);
    }
    void enterEvent(QEnterEvent*) override { update(); }
    void leaveEvent(QEvent*) override { update(); }
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) return;
        isDragged_ = true;
        grip_ = event->position().y() - grabHeight / 2.0;
        formerRatio_ = workspace_.settings_.previewSplitRatio();
        guard_.begin();
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!isDragged_) return;
        const double y = workspace_.mapFromGlobal(event->globalPosition()).y() - grip_;
        workspace_.setSplit(y / std::max(workspace_.height(), 1));
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) endDrag();
    }
    void mouseDoubleClickEvent(QMouseEvent*) override { workspace_.setSplit(UserSettings::defaultSplitRatio); }
    void keyPressEvent(QKeyEvent* event) override {
        const bool isUp = event->key() == Qt::Key_Up;
        if (!isUp && event->key() != Qt::Key_Down) return event->ignore();
        const double y = workspace_.layoutNow().timeline.top() + (isUp ? -keyboardStep : keyboardStep);
        workspace_.setSplit(y / std::max(workspace_.height(), 1));
    }

private:
    void endDrag() {
        isDragged_ = false;
        guard_.end();
        update();
    }

    Workspace& workspace_;
    bool isDragged_ = false;
    double grip_ = 0;
    double formerRatio_ = 0;
    DragGuard guard_{[this] {
        endDrag();
        workspace_.setSplit(formerRatio_);
    }};
};

Workspace::Workspace(WorkspacePanes panes, UserSettings& settings, QWidget* parent)
    : QWidget(parent)
    , panes_(panes)
    , settings_(settings)
    , sidebarDrawer_(motion::drawerMilliseconds, [this] { place(); })
    , inspectorDrawer_(motion::drawerMilliseconds, [this] { place(); }) {
    for (QWidget* pane : {panes_.viewer, panes_.transport, panes_.timeline, panes_.sidebar, panes_.inspector})
        pane->setParent(this);
    divider_ = new Divider(*this);
    panes_.sidebar->raise();
    panes_.inspector->raise();
    qApp->installEventFilter(this);
}

WorkspaceLayout Workspace::layoutNow() const {
    return WorkspaceLayout::of(size(), showsSidebar(), showsInspector(), settings_.previewSplitRatio(),
                               panes_.timeline->minimumHeight());
}

bool Workspace::showsSidebar() const {
    return width() < WorkspaceLayout::sidebarDrawerBelow ? sidebarOpen_ : settings_.sidebarVisible();
}

bool Workspace::showsInspector() const {
    return width() < WorkspaceLayout::inspectorDrawerBelow ? inspectorOpen_ : settings_.inspectorVisible();
}

void Workspace::toggle(bool isDrawer, bool& isOpen, Fade& drawer, bool isShown, void (UserSettings::*keep)(bool)) {
    if (isDrawer) {
        isOpen = !isOpen;
        drawer.moveTo(isOpen ? 1 : 0);
    } else {
        (settings_.*keep)(!isShown);
    }
    place();
    if (onPanesChanged) onPanesChanged();
}

void Workspace::toggleSidebar() {
    toggle(width() < WorkspaceLayout::sidebarDrawerBelow, sidebarOpen_, sidebarDrawer_, showsSidebar(),
           &UserSettings::setSidebarVisible);
}

void Workspace::toggleInspector() {
    toggle(width() < WorkspaceLayout::inspectorDrawerBelow, inspectorOpen_, inspectorDrawer_, showsInspector(),
           &UserSettings::setInspectorVisible);
}

bool Workspace::closeDrawer() {
    const WorkspaceLayout layout = layoutNow();
    if (layout.sidebarIsDrawer && sidebarOpen_) {
        toggleSidebar();
        return true;
    }
    if (layout.inspectorIsDrawer && inspectorOpen_) {
        toggleInspector();
        return true;
    }
    return false;
}

void Workspace::setCover(QWidget* cover) {
    if (cover_ == cover) return;
    if (cover_) cover_->hide();
    cover_ = cover;
    if (cover_) {
        cover_->setParent(this);
        cover_->show();
    }
    place();
}

void Workspace::setSplit(double ratio) {
    settings_.setPreviewSplitRatio(std::clamp(ratio, UserSettings::lowestSplitRatio, UserSettings::highestSplitRatio));
    place();
}

void Workspace::resizeEvent(QResizeEvent*) {
    // A drawer that has got room beside the viewer is none any more.
    if (width() >= WorkspaceLayout::sidebarDrawerBelow) sidebarOpen_ = false;
    if (width() >= WorkspaceLayout::inspectorDrawerBelow) inspectorOpen_ = false;
    sidebarDrawer_.jumpTo(sidebarOpen_ ? 1 : 0);
    inspectorDrawer_.jumpTo(inspectorOpen_ ? 1 : 0);
    place();
    if (onPanesChanged) onPanesChanged();
}

void Workspace::place() {
    const WorkspaceLayout layout = layoutNow();
    const auto drawer = [](QWidget* pane, bool isDrawer, bool isShown, double open, QRect shown, int direction) {
        pane->setVisible(isDrawer ? open > 0 : isShown);
        if (!pane->isVisibleTo(pane->parentWidget())) return;
        const int hidden = isDrawer ? static_cast<int>(std::lround(shown.width() * (1 - open))) : 0;
        pane->setGeometry(shown.translated(direction * hidden, 0));
    };
    drawer(panes_.sidebar, layout.sidebarIsDrawer, showsSidebar(), sidebarDrawer_.value(),
           QRect(0, 0, WorkspaceLayout::sidebarWidth, height()), -1);
    drawer(panes_.inspector, layout.inspectorIsDrawer, showsInspector(), inspectorDrawer_.value(),
           QRect(width() - WorkspaceLayout::inspectorWidth, 0, WorkspaceLayout::inspectorWidth, height()), 1);
    for (QWidget* pane : {panes_.viewer, panes_.transport, panes_.timeline, static_cast<QWidget*>(divider_)})
        pane->setVisible(!cover_);
    panes_.viewer->setGeometry(layout.viewer);
    panes_.transport->setGeometry(layout.transport);
    panes_.timeline->setGeometry(layout.timeline);
    divider_->setGeometry(layout.timeline.left(), layout.timeline.top() - grabHeight / 2, layout.timeline.width(),
                          grabHeight);
    if (cover_) {
        // What waits for its clip has no values to show.
        panes_.inspector->hide();
        cover_->setGeometry(layout.viewer.left(), 0, width() - layout.viewer.left(), height());
    }
    divider_->raise();
    panes_.sidebar->raise();
    panes_.inspector->raise();
}

bool Workspace::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonPress || (!sidebarOpen_ && !inspectorOpen_)) return false;
    // A click beside an open drawer closes it, and does nothing else. What a pane ignores comes to the workspace too.
    const auto* pressed = qobject_cast<QWidget*>(watched);
    if (!pressed || pressed == this || !isAncestorOf(pressed)) return false;
    if (sidebarOpen_ && panes_.sidebar->isAncestorOf(pressed)) return false;
    if (inspectorOpen_ && panes_.inspector->isAncestorOf(pressed)) return false;
    return closeDrawer();
}

void Workspace::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::well);
}

} // namespace flowtide
