// The timeline area: the graph, its lanes, and what belongs to them.
#pragma once

#include "ui/graph/timeline_context.h"
#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QString>
#include <QWidget>

namespace flowtide {

class ClipLane;
class CoverageBar;
class CurveGraph;
class FlowLane;
class LineLabel;
class Ruler;
class TimelineHead;
class TimelineOverlay;
class ZoomLaneView;

class TimelinePane final : public QWidget {
    Q_OBJECT

public:
    explicit TimelinePane(SessionHost& host, QWidget* parent = nullptr);
    explicit TimelinePane(const TimelineServices& services, QWidget* parent = nullptr);
    ~TimelinePane() override;

    /// Those of the curve and of the time axis: zoomIn to panRight, deletePoints to insertPoint.
    void perform(Command command);
    /// What the line under the graph says while the pointer is on the picture; empty: nothing.
    void setPictureHint(const QString& hint);
    /// What has the focus when the window opens.
    QWidget* graph() const;
    /// The first of the lanes below it that takes the focus.
    QWidget* firstLane() const;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void place();
    void fitWindow(int windowHeight);
    void showHint();
    void showCurve();

    TimelineContext context_;
    QString pictureHint_;
    TimelineHead* head_;
    Ruler* ruler_;
    CurveGraph* graph_;
    FlowLane* flow_;
    CoverageBar* coverage_;
    ClipLane* clip_;
    ZoomLaneView* zoom_;
    LineLabel* hint_;
    TimelineOverlay* overlay_;
    Subscription changes_;
};

} // namespace flowtide
