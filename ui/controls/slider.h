// A value between two ends.
#pragma once

#include "ui/controls/drag_guard.h"
#include "ui/controls/hover.h"

#include <QColor>
#include <QSlider>
#include <functional>

namespace flowtide {

/// Whole steps from minimum() to maximum(). A drag is a gesture between onGestureBegin and onGestureEnd, with the value
/// of each of its steps in between, the last one the value before where Esc has cancelled it; a double click goes back
/// to the default, arrows move by a step, as gestures too.
class ValueSlider final : public QSlider {
    Q_OBJECT

public:
    /// `color`: of the filled part; theme::text where it has no meaning.
    ValueSlider(const QString& name, QColor color, int minimum, int maximum, int defaultValue,
                QWidget* parent = nullptr);

    std::function<void()> onGestureBegin;
    std::function<void(int value)> onValue; ///< the user has changed it
    std::function<void()> onGestureEnd;

    /// Tells nobody.
    void showValue(int value);
    QSize sizeHint() const override { return {120, 20}; }
    QSize minimumSizeHint() const override { return {60, 20}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void sliderChange(SliderChange change) override;

private:
    void change(int value);
    void changeAtOnce(int value);
    int valueAt(double x) const;
    QRectF thumb() const;
    void endGesture();

    QColor color_;
    int defaultValue_;
    bool isDragged_ = false;
    int valueBefore_ = 0; ///< the drag
    double grip_ = 0;     ///< from the thumb's middle to where it was grabbed
    DragGuard guard_{[this] {
        change(valueBefore_);
        endGesture();
    }};
    Hover hover_{*this};
};

} // namespace flowtide
