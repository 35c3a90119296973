// The lane of in-between frames: where they are made, and what of them is rendered.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/graph/flow_lane_items.h"
#include "ui/graph/timeline_lane.h"

#include <QTimer>

namespace flowtide {

class FlowLane final : public TimelineLane {
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

private:
    void refresh();
    void paintItem(QPainter& painter, const FlowLaneItem& item) const;
    const FlowLaneItem* itemAt(QPointF place) const;
    void render();
    void setHovered(const FlowLaneItem* item);

    std::vector<FlowLaneItem> items_;
    std::optional<Uuid> hovered_;
    IconButton* render_;
    QTimer progressPause_; ///< a share changes at most four times a second
    bool isStale_ = false;
    Subscription changes_;
    Subscription progress_;
};

} // namespace flowtide
