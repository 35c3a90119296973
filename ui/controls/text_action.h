// A small button at the end of a heading.
#pragma once

#include "ui/controls/hover.h"

#include <QPushButton>
#include <QString>

namespace flowtide {

/// An icon and a few words, 11 pixels high. Its ground, shown while it is hovered, reaches beyond its words.
class TextAction final : public QPushButton {
    Q_OBJECT

public:
    static constexpr int overhang = 6; ///< of the ground, at each side

    TextAction(const QString& text, QString icon, QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString icon_;
    Hover hover_{*this};
};

} // namespace flowtide
