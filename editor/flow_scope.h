// Where in-between frames are made: the automatic Optical Flow ranges, and the stretches that the user took out.
#pragma once

#include "core/optical_flow_ranges.h"
#include "core/render_choices.h"
#include "editor/change_notifier.h"
#include "editor/speed_curve.h"

#include <optional>
#include <vector>

namespace flowtide {

/// The two lists that go together: ranges, and the spans in which original frames are shown instead.
struct FlowMarks {
    std::vector<OpticalFlowRange> ranges;
    SourceRanges originalFrameSpans;
    friend bool operator==(const FlowMarks&, const FlowMarks&) = default;
};

/// The marks for a curve that has changed from one whose marks were `before`. A fresh range keeps the id of the old one
/// that it overlaps most, and stays switched off where that one was: the spans that switch ranges off go with them.
/// Spans whose ranges have not moved, or are gone, stay where they are.
FlowMarks carriedOver(const FlowMarks& before, const SourceRanges& freshRanges);

/// Whether a span switches a range off; touching is enough.
bool switchesOff(const SourceRange& span, const OpticalFlowRange& range);

/// Main thread only.
class FlowScope {
public:
    explicit FlowScope(ChangeNotifier& notifier);

    FrameInterpolation frameInterpolation() const { return frameInterpolation_.get(); }
    const std::vector<OpticalFlowRange>& opticalFlowRanges() const { return opticalFlowRanges_.get(); }
    const std::optional<Uuid>& selectedOpticalFlowRangeID() const { return selectedOpticalFlowRangeID_.get(); }
    const SourceRanges& originalFrameSpans() const { return originalFrameSpans_.get(); }
    FlowMarks marks() const { return {opticalFlowRanges(), originalFrameSpans()}; }

    const OpticalFlowRange* range(const Uuid& id) const;
    bool isSwitchedOn(const OpticalFlowRange& range) const;
    /// The ranges that exports and previews make frames in, within the kept part of the clip.
    SourceRanges effectiveRanges(SourceRange trim) const;
    /// What the curve asks for now. `frameRate` of the clip, `smoothFrameRate` as the user has set it.
    static SourceRanges automaticRanges(const SpeedCurve& curve, double frameRate, double smoothFrameRate);

    // These install, and decide nothing but that the selection names a range that is there:
    void setFrameInterpolation(FrameInterpolation interpolation);
    void setMarks(FlowMarks marks);
    void select(std::optional<Uuid> id);
    void reset();

private:
    Observed<FrameInterpolation> frameInterpolation_;
    Observed<std::vector<OpticalFlowRange>> opticalFlowRanges_;
    Observed<std::optional<Uuid>> selectedOpticalFlowRangeID_;
    Observed<SourceRanges> originalFrameSpans_;
};

} // namespace flowtide
