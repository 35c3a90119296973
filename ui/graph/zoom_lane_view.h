// The lane of zoom blocks.
#pragma once

#include "ui/accessible_items.h"
#include "ui/controls/buttons.h"
#include "ui/controls/drag_guard.h"
#include "ui/graph/timeline_lane.h"
#include "ui/graph/zoom_lane_geometry.h"

namespace flowtide {

/// Blocks are drawn, moved, resized and selected here; each drag is one step of history.
class ZoomLaneView final : public TimelineLane, private AccessibleSource {
    Q_OBJECT

public:
    static constexpr int overlap = 4; ///< pixels above and below the lane: room for the ring of a selected block

    ZoomLaneView(TimelineContext& context, QWidget* parent);
    ~ZoomLaneView() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    std::vector<Uuid> itemIds() const override;
    std::optional<AccessibleItem> accessibleItem(const Uuid& id, std::size_t index) const override;
    std::optional<Uuid> currentItem() const override;
    std::optional<Uuid> itemUnder(QPointF place) const override;
    QString itemSummary() const override;
    void pressItem(const Uuid& id) override;
    void setItemValue(const Uuid& id, double value) override;

    void refresh();
    QString words(const ZoomBlock& block) const;
    void paintBlock(QPainter& painter, const ZoomBlock& block) const;
    void paintRamp(QPainter& painter, const ZoomBlock& block, const QRectF& box) const;
    void paintDraft(QPainter& painter) const;
    void dragTo(double x);
    void beginEdit();
    void endEdit();
    void letGo();
    void cancelDrag();
    void setHovered(std::optional<ZoomHit> hit);
    std::optional<ZoomHit> hitAt(QPointF place) const;
    const ZoomBlock* selected() const;

    IconButton* add_;
    std::optional<ZoomHit> hovered_;
    std::optional<ZoomHit> held_;
    ZoomBlock heldBlock_;             ///< as it was
    std::optional<double> drawnFrom_; ///< source seconds
    std::optional<SourceRange> draft_;
    double pressedX_ = 0;
    bool isDrag_ = false;
    bool isEdit_ = false;
    std::optional<Uuid> selectedBefore_;
    DragGuard guard_{[this] { cancelDrag(); }};
    Subscription changes_;
    AccessibleItems tree_{*this, *this, QAccessible::List};
};

} // namespace flowtide
