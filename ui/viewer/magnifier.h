// How large the picture is shown.
#pragma once

#include "ui/controls/hover.h"

#include <QPushButton>
#include <functional>
#include <optional>

namespace flowtide {

/// Shows the magnification and offers others.
class Magnifier final : public QPushButton {
    Q_OBJECT

public:
    explicit Magnifier(QWidget* parent);

    /// Device pixels for each of the clip; nothing: all of the picture.
    std::function<void(std::optional<double> magnification)> onChoice;
    std::function<bool(double magnification)> canMagnify;

    /// Free beside its words; part of the button, but not seen.
    static constexpr int padding = 8;
    void showMagnification(std::optional<double> magnification);
    /// Whether it lies on the picture, where it needs a ground.
    void setOnPicture(bool isOnPicture);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openMenu();

    std::optional<double> magnification_;
    bool isOnPicture_ = false;
    Hover hover_{*this};
};

} // namespace flowtide
