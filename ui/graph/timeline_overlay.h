// What lies over all parts of the timeline: the playhead, and the labels of what is dragged.
#pragma once

#include "ui/graph/timeline_context.h"

#include <QWidget>

namespace flowtide {

/// From the ruler to the zoom lane. The pointer does not see it.
class TimelineOverlay final : public QWidget {
    Q_OBJECT

public:
    TimelineOverlay(TimelineContext& context, QWidget* parent);

    /// The height at which the playhead crosses the curve, within the overlay; nothing: it does not.
    void setCurveHeight(std::optional<double> y);
    void setCodesTop(double y) { codesTop_ = y; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void updatePlayhead();
    void updateLabels();
    QRect playheadArea() const;
    void paintPlayhead(QPainter& painter) const;

    TimelineContext& context_;
    std::optional<double> curveY_;
    double codesTop_ = 0;
    QRect paintedPlayhead_;
    QRect paintedLabels_;
    Subscription changes_;
};

} // namespace flowtide
