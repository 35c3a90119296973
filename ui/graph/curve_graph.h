// The graph: the curve of speed or of framing over the clip's time, where it is edited.
#pragma once

#include "ui/graph/curve_graph_input.h"
#include "ui/graph/curve_graph_items.h"
#include "ui/graph/curve_graph_painter.h"
#include "ui/shortcuts.h"

#include <QWidget>

namespace flowtide {

class CurveGraph final : public QWidget {
    Q_OBJECT

public:
    CurveGraph(TimelineContext& context, QWidget* parent);

    void setPlot(int top, int height);
    /// deletePoints to insertPoint.
    void perform(Command command);

signals:
    /// The height at which the playhead crosses the curve that will be seen; below 0: nowhere.
    void curveHeightChanged(double y);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
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
    void refresh(const PropertySet& changed);
    /// The session tells of another curve in its next turn; whatever happens here before is of that curve already.
    void catchUp();
    /// A selected point may have gone with an undo.
    void forgetGonePoints();
    void axisMoved();
    void followValues(bool animated);
    void curveChanged();
    void updateCurveHeight();
    CurveGraphGeometry geometry() const;
    const CurveGraphPicture& picture();
    /// `former`: what was shown before.
    void buildCurves(const CurveGraphPicture& former);
    void buildMarks();
    void showPointer(QPointF place, Qt::KeyboardModifiers modifiers);
    enum class Pointer { arrow, openHand, closedHand, cross, addPoint };
    Pointer pointerFor(QPointF place, Qt::KeyboardModifiers modifiers) const;
    void setPointer(Pointer pointer);
    void nudge(int key, bool isTenfold);
    void endNudges();
    ValueRange wantedWindow() const;
    double guideSpeed() const;

    TimelineContext& context_;
    CurveGraphInput input_;
    CurveGraphPicture picture_;
    bool isStale_ = true; ///< the picture
    bool isFraming_;      ///< the curve that the window and what is held are of
    Pointer pointer_ = Pointer::arrow;
    int plotTop_ = 0;
    int plotHeight_ = 1;
    ValueRange window_;     ///< as shown
    ValueRange windowFrom_; ///< while it settles
    ValueRange windowTo_;
    Fade settle_;
    bool showsKeyboard_ = false; ///< the last thing done here was done by keys
    bool isNudging_ = false;
    SpeedKeyframes copied_;
    bool copiedFraming_ = false;
    Subscription changes_;
    CurveGraphItems items_;
};

} // namespace flowtide
