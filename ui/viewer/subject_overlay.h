// The box that is drawn around a subject, and the one that follows it.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/viewer/picture_layer.h"

#include <optional>

namespace flowtide {

/// While a subject is chosen a drag draws its box, and its end begins the tracking.
class SubjectOverlay final : public PictureLayer {
public:
    static constexpr double keyboardStep = 0.01; ///< of the frame's width or height
    static constexpr SubjectBox firstBox{0.4, 0.3, 0.2, 0.4};

    explicit SubjectOverlay(FlowtideViewModel& model)
        : model_(model) {}

    /// Tracks what the keyboard has boxed; false when there is no box.
    bool start();
    /// Choosing has ended.
    void forget();

    void paint(QPainter& painter, const PicturePlace& place) const override;
    bool takes(QPointF at, const PicturePlace& place) const override;
    Qt::CursorShape cursor(bool) const override { return Qt::CrossCursor; }
    void begin(QPointF at, Qt::KeyboardModifiers modifiers, const PicturePlace& place) override;
    void drag(QPointF at, const PicturePlace& place) override;
    void end(bool isCancelled) override;
    /// The first time shows a box in the middle.
    bool nudge(int x, int y, bool isShifted, const PicturePlace& place) override;

private:
    bool isChoosing() const;

    FlowtideViewModel& model_;
    bool isDrawing_ = false;
    QPointF corner_; ///< fractions
    std::optional<SubjectBox> box_;
    std::optional<SubjectBox> boxBefore_; ///< a drag
};

} // namespace flowtide
