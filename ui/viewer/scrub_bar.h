// The playhead in the output, to be dragged.
#pragma once

#include "editor/flowtide_view_model.h"

#include <QSlider>

namespace flowtide {

/// Its values are milliseconds of the output. Optical Flow ranges lie above it, solid where they are rendered.
class ScrubBar final : public QSlider {
    Q_OBJECT

public:
    static constexpr int barHeight = 24;
    static constexpr int knobRadius = 7;

    ScrubBar(FlowtideViewModel& model, QWidget* parent);

    /// Shows the playhead.
    void refresh();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void scrubTo(double x);
    void scrubTo(OutputSeconds time);
    double xOf(double outputSeconds) const;

    FlowtideViewModel& model_;
};

} // namespace flowtide
