// The frame of the part that is exported, and its way across the picture.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/viewer/picture_layer.h"

#include <QString>
#include <optional>

namespace flowtide {

/// A drag of the frame, or of the picture beside it, keys its position at the playhead.
class CropOverlay final : public PictureLayer {
public:
    static constexpr double keyboardStep = 0.01; ///< of the travel
    static constexpr double largeStep = 0.1;

    explicit CropOverlay(FlowtideViewModel& model)
        : model_(model) {}

    /// The crop of the open clip; nothing while it is off, or when the clip has none.
    static std::optional<CropPlan> plan(const FlowtideViewModel& model);
    /// Where the crop is, 0...1: on the path that is exported, during a drag on the curve itself.
    static double travel(const FlowtideViewModel& model);

    void paint(QPainter& painter, const PicturePlace& place) const override;
    bool takes(QPointF at, const PicturePlace& place) const override;
    void begin(QPointF at, Qt::KeyboardModifiers modifiers, const PicturePlace& place) override;
    void drag(QPointF at, const PicturePlace& place) override;
    void end(bool isCancelled) override;
    bool nudge(int x, int y, bool isShifted, const PicturePlace& place) override;

private:
    FlowtideViewModel& model_;
    double pressX_ = 0;
    double pressTravel_ = 0;
};

} // namespace flowtide
