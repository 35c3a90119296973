// Where the framing follows a tracked subject, and where the subject was lost.
#pragma once

#include "ui/accessible_items.h"
#include "ui/graph/timeline_lane.h"

#include <vector>

namespace flowtide {

/// A place where the subject was lost.
struct CoverageFlag {
    double time = 0;          ///< source seconds: the end of the tracked stretch
    double lastFrameTime = 0; ///< source seconds: what to look at
    bool isAfter = true;      ///< of the stretch, or before it
    friend bool operator==(const CoverageFlag&, const CoverageFlag&) = default;
};

std::vector<CoverageFlag> coverageFlags(const std::vector<SubjectTrackingRange>& ranges);

/// Reaches a little into the graph: flags stand above the lane. A click on a flag, or Enter, shows the last tracked
/// frame.
class CoverageBar final : public TimelineLane, private AccessibleSource {
    Q_OBJECT

public:
    static constexpr int overlap = 8; ///< pixels

    CoverageBar(TimelineContext& context, QWidget* parent);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    std::vector<Uuid> itemIds() const override;
    std::optional<AccessibleItem> accessibleItem(const Uuid& id, std::size_t index) const override;
    std::optional<Uuid> currentItem() const override;
    std::optional<Uuid> itemUnder(QPointF place) const override;
    QString itemSummary() const override;
    void pressItem(const Uuid& id) override;

    void refresh();
    const CoverageFlag* flagAt(QPointF place) const;
    const CoverageFlag* current() const;
    /// Where a press hits it; empty when it is out of sight.
    QRectF hitBox(const CoverageFlag& flag) const;
    static QString sentence(const CoverageFlag& flag);
    void paintFlag(QPainter& painter, const CoverageFlag& flag) const;
    void paintTracked(QPainter& painter, const SourceRange& range) const;
    void paintGrowth(QPainter& painter) const;

    std::vector<CoverageFlag> flags_;
    const CoverageFlag* hovered_ = nullptr; ///< in flags_
    std::optional<CoverageFlag> current_;   ///< by keyboard
    Subscription changes_;
    AccessibleItems tree_{*this, *this, QAccessible::List};
};

} // namespace flowtide
