// The handle at an end of the kept part of the clip.
#pragma once

#include "ui/controls/drag_guard.h"
#include "ui/graph/timeline_context.h"

#include <QWidget>
#include <optional>

namespace flowtide {

enum class TrimEnd { start, end };

/// Stands outside of the kept part. Dragging it trims at once; the axis stands still until it is let go.
class TrimHandle final : public QWidget {
    Q_OBJECT

public:
    static constexpr int widest = 12; ///< pixels, when hovered

    TrimHandle(TimelineContext& context, TrimEnd end, QWidget* parent);
    ~TrimHandle() override;

    /// Ends a drag where it is.
    void letGo();
    /// To be called when the axis or the trim has changed.
    void place(int top, int height);

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    double edge() const; ///< source seconds
    void trimTo(double seconds);
    void showLabel();
    void cancel();

    TimelineContext& context_;
    TrimEnd end_;
    bool isHeld_ = false;
    double grip_ = 0; ///< pixels from the edge to where it was grabbed
    std::optional<TrimState> before_;
    DragGuard guard_{[this] { cancel(); }};
};

} // namespace flowtide
