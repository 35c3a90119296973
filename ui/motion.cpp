#include "ui/motion.h"

#include <QCoreApplication>
#include <QEasingCurve>
#include <utility>

namespace flowtide {

namespace motion {

namespace {
constexpr const char* reducedProperty = "flowtide.reducedMotion";
}

bool isReduced() {
    return QCoreApplication::instance()->property(reducedProperty).toBool();
}

void setReduced(bool reduced) {
    QCoreApplication::instance()->setProperty(reducedProperty, reduced);
}

} // namespace motion

Fade::Fade(int milliseconds, std::function<void()> onChange, double value)
    : onChange_(std::move(onChange))
    , milliseconds_(milliseconds)
    , value_(value)
    , target_(value) {
    animation_.setEasingCurve(QEasingCurve::OutCubic);
    QObject::connect(&animation_, &QVariantAnimation::valueChanged, &animation_, [this](const QVariant& step) {
        value_ = step.toDouble();
        onChange_();
    });
}

void Fade::moveTo(double target) {
    if (target == target_) return;
    target_ = target;
    animation_.stop();
    if (motion::isReduced()) {
        value_ = target;
        onChange_();
        return;
    }
    animation_.setDuration(milliseconds_);
    animation_.setStartValue(value_);
    animation_.setEndValue(target);
    animation_.start();
}

void Fade::jumpTo(double value) {
    animation_.stop();
    value_ = target_ = value;
    onChange_();
}

} // namespace flowtide
