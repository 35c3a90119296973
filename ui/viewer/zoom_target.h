// The place about which the selected zoom block magnifies.
#pragma once

#include "core/zoom_engine.h"
#include "editor/flowtide_view_model.h"
#include "ui/viewer/picture_layer.h"

namespace flowtide {

/// A drag sets the block's place; with Alt or Ctrl the one at the playhead, so that it moves.
class ZoomTarget final : public PictureLayer {
public:
    static constexpr double keyboardStep = 0.01; ///< of the frame's width or height
    static constexpr double largeStep = 0.1;

    explicit ZoomTarget(FlowtideViewModel& model)
        : model_(model) {}

    /// Null when none is selected.
    static const ZoomBlock* block(const FlowtideViewModel& model);
    /// Where it is at the playhead, fractions of the frame.
    static ZoomEngine::FocalPoint focal(const FlowtideViewModel& model, const ZoomBlock& block);

    void paint(QPainter& painter, const PicturePlace& place) const override;
    bool takes(QPointF at, const PicturePlace& place) const override;
    void begin(QPointF at, Qt::KeyboardModifiers modifiers, const PicturePlace& place) override;
    void drag(QPointF at, const PicturePlace& place) override;
    void end(bool isCancelled) override;
    bool nudge(int x, int y, bool isShifted, const PicturePlace& place) override;

private:
    void drawPath(QPainter& painter, const ZoomBlock& block, const QRectF& frame) const;

    FlowtideViewModel& model_;
    bool isDragged_ = false;
    bool keysMotion_ = false;
    QPointF grip_; ///< from the pointer to the target's middle
};

} // namespace flowtide
