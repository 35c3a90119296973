// How far a control is hovered and pressed, for its colors.
#pragma once

#include "ui/motion.h"

#include <QColor>
#include <QEvent>
#include <QObject>
#include <QWidget>

namespace flowtide {

/// Watches a widget and repaints it while its colors change.
class Hover final : public QObject {
public:
    explicit Hover(QWidget& widget);

    double hovered() const { return hovered_.value(); } ///< 0...1
    double pressed() const { return pressed_.value(); } ///< 0...1

    /// The color for how the widget is touched now.
    QColor color(QColor rest, QColor hover, QColor press) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& widget_;
    Fade hovered_;
    Fade pressed_;
};

} // namespace flowtide
