// How things move: eased, short, and not at all for who asks for that.
#pragma once

#include <QObject>
#include <QVariantAnimation>
#include <functional>

namespace flowtide {

namespace motion {

constexpr int hoverMilliseconds = 80;
constexpr int switchMilliseconds = 120;
constexpr int panelMilliseconds = 120;
constexpr int drawerMilliseconds = 160;
constexpr int timelineMilliseconds = 140;
constexpr int settleMilliseconds = 180; ///< the visible range of values, after a drag

/// Whether the desktop was asked for less motion: everything then happens at once.
bool isReduced();
void setReduced(bool reduced);

} // namespace motion

/// A number that moves to where it is sent.
class Fade {
public:
    /// `onChange` is called for every value on the way.
    Fade(int milliseconds, std::function<void()> onChange, double value = 0);

    double value() const { return value_; }
    double target() const { return target_; }
    void moveTo(double target);
    void jumpTo(double value);

private:
    QVariantAnimation animation_;
    std::function<void()> onChange_;
    int milliseconds_;
    double value_;
    double target_;
};

} // namespace flowtide
