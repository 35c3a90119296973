// On or off.
#pragma once

#include "ui/controls/hover.h"
#include "ui/motion.h"

#include <QCheckBox>
#include <QColor>

namespace flowtide {

class Switch final : public QCheckBox {
    Q_OBJECT

public:
    /// `color`: of its track while it is on, that of its meaning; theme::text where it has none.
    Switch(const QString& name, QColor color, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {28, 16}; }

protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color_;
    Hover hover_{*this};
    Fade knob_{motion::switchMilliseconds, [this] { update(); }};
};

} // namespace flowtide
