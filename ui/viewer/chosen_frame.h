// The frame in which a subject was chosen, small, while it is followed.
#pragma once

#include "editor/flowtide_view_model.h"

#include <QImage>
#include <QWidget>
#include <functional>

namespace flowtide {

/// Shows and hides itself.
class ChosenFrame final : public QWidget {
    Q_OBJECT

public:
    static constexpr int padding = 8; ///< pixels around what it shows

    explicit ChosenFrame(FlowtideViewModel& model, QWidget* parent = nullptr);

    std::function<void()> onResized;

    /// Over a picture it needs a ground of its own.
    void setOnPicture(bool isOnPicture);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();

    FlowtideViewModel& model_;
    QImage picture_;
    bool isOnPicture_ = false;
    Subscription changes_;
};

} // namespace flowtide
