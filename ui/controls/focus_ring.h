// Shows which control the keyboard has.
#pragma once

#include <QPointer>
#include <QWidget>

namespace flowtide {

/// A frame above everything in a window, around the control that has the focus, once the user moves by keyboard.
/// Controls say with setFocusRing() that they want one; what paints its own focus does not.
class FocusRing final : public QWidget {
public:
    static constexpr double lineWidth = 2;
    static constexpr double distance = 1; ///< from the control

    explicit FocusRing(QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void follow(QWidget* focused);
    void place();

    QRectF around() const; ///< what it frames, pixels of the window

    QWidget& window_;
    QPointer<QWidget> target_;
    bool movesByKeyboard_ = false;
};

/// `radius`: the control's own; `part`: of the control, what the ring goes around where that is not all of it.
void setFocusRing(QWidget& control, double radius, const QRectF& part = {});

} // namespace flowtide
