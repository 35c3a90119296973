// The vertical crop of the open clip: its shape, the framing curve, and the path that the crop glides along.
#pragma once

#include "core/crop_framing.h"
#include "core/crop_plan.h"
#include "editor/change_notifier.h"
#include "editor/curve_points.h"
#include "editor/speed_curve.h"
#include "media/imported_clip.h"

#include <optional>
#include <vector>

namespace flowtide {

/// The crop that an export makes of a clip; nothing where it makes none: of a clip that is no wider, or turned.
std::optional<CropPlan> exportedCrop(const ImportedClip& clip, CropAspectRatio ratio);

/// Main thread only. Crop positions are fractions of the crop's travel.
class Framing {
public:
    static constexpr double defaultGlide = 0.5;

    /// `curve` gives the trim and the time map.
    Framing(ChangeNotifier& notifier, const SpeedCurve& curve);

    const SpeedKeyframes& centerKeyframes() const { return centerKeyframes_.get(); }
    double centerSmoothing() const { return centerSmoothing_.get(); }
    bool isVerticalCropEnabled() const { return isVerticalCropEnabled_.get(); }
    CropAspectRatio cropAspectRatio() const { return cropAspectRatio_.get(); }
    bool lockCropCenter() const { return lockCropCenter_.get(); }
    bool isCropDragActive() const { return isCropDragActive_.get(); }

    CurveDomain domain() const;
    std::optional<SpeedKeyframes> bounded(SpeedKeyframes points) const;
    /// What an export is asked for; nothing while the crop is off.
    std::optional<VerticalCropSettings> exportSettings() const;

    /// Where the framing curve is at a source time, as it is drawn.
    double liveCropTravel(double time) const;
    /// Where the crop is at a source time: on the path that an export at this frame duration glides along.
    double glidedCropTravel(double time) const;

    // These install, and decide nothing:
    void setCenterKeyframes(SpeedKeyframes keyframes);
    void setCenterSmoothing(double glide);
    void setVerticalCropEnabled(bool enabled);
    void setCropAspectRatio(CropAspectRatio ratio);
    void setLockCropCenter(bool locked);
    void setCropDragActive(bool active);
    /// Another clip, or none. `frameDuration`: seconds.
    void reset(double frameDuration);

private:
    const SpeedCurve& curve_;
    Observed<SpeedKeyframes> centerKeyframes_;
    Observed<double> centerSmoothing_;
    Observed<bool> isVerticalCropEnabled_;
    Observed<CropAspectRatio> cropAspectRatio_;
    Observed<bool> lockCropCenter_;
    Observed<bool> isCropDragActive_;

    struct GlideTableKey {
        SpeedKeyframes centerKeyframes;
        double glide = 0;
        SpeedKeyframes speedKeyframes;
        double speedSmoothing = 0;
        SourceRange trimRange;
    };
    bool isGlideTableCurrent() const;

    mutable std::optional<GlideTableKey> glideTableKey_;
    mutable std::vector<double> glideTableSamples_;
    double glideTableStep_ = 1.0 / 60; ///< output seconds: the clip's frame duration, as exports have it
};

} // namespace flowtide
