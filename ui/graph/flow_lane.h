// The lane of in-between frames: where they are made, and what of them is rendered.
#pragma once

#include "ui/accessible_items.h"
#include "ui/controls/buttons.h"
#include "ui/graph/flow_lane_items.h"
#include "ui/graph/timeline_lane.h"

#include <QTimer>

namespace flowtide {

/// Ranges are selected here; Enter renders what the lane's button would.
class FlowLane final : public TimelineLane, private AccessibleSource {
    Q_OBJECT

public:
    FlowLane(TimelineContext& context, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    std::vector<Uuid> itemIds() const override;
    std::optional<AccessibleItem> accessibleItem(const Uuid& id, std::size_t index) const override;
    std::optional<Uuid> currentItem() const override;
    std::optional<Uuid> itemUnder(QPointF place) const override;
    QString itemSummary() const override;
    void pressItem(const Uuid& id) override;

    void refresh();
    void paintItem(QPainter& painter, const FlowLaneItem& item) const;
    const FlowLaneItem* itemAt(QPointF place) const;
    const FlowLaneItem* selected() const;
    void openMenu(const FlowLaneItem& item, QPoint globalPlace);
    void render();
    void setHovered(const FlowLaneItem* item);

    std::vector<FlowLaneItem> items_;
    std::optional<Uuid> hovered_;
    IconButton* render_;
    QTimer progressPause_; ///< a share changes at most four times a second
    bool isStale_ = false;
    Subscription changes_;
    Subscription progress_;
    AccessibleItems tree_{*this, *this, QAccessible::List};
};

} // namespace flowtide
