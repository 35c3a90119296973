// What lanes have in common: a ground on the time axis, a sign in the left gutter.
#pragma once

#include "ui/graph/timeline_context.h"

#include <QPainter>
#include <QString>
#include <QWidget>

namespace flowtide {

class TimelineLane : public QWidget {
    Q_OBJECT

public:
    /// `top`, `laneHeight`: of the ground, within the widget.
    TimelineLane(TimelineContext& context, int top, int laneHeight, QWidget* parent);

protected:
    /// By Tab. The ring goes around the ground and what is drawn beside it.
    void takeFocus(double drawnAbove = ringRoom);
    QRectF ground() const;
    void setGround(int top, int laneHeight);
    /// A stretch of source time on the ground, cut at its edges; empty when it is out of sight.
    QRectF stretch(double from, double to) const;
    void paintGround(QPainter& painter) const;
    void paintSign(QPainter& painter, const QString& icon, const QRectF& row) const;
    /// Those lines that run from the ruler to the clip.
    void paintTrimLines(QPainter& painter) const;
    bool isTrimmedAtStart() const;
    bool isTrimmedAtEnd() const;

    TimelineContext& context_;

private:
    static constexpr double ringRoom = 4; ///< pixels: for the ring of a selected item

    int top_;
    int laneHeight_;
};

} // namespace flowtide
