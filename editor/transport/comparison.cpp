// Requests and results.
#include "editor/transport/comparison.h"

#include <utility>

namespace flowtide {

Comparison::Comparison(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier,
                       std::shared_ptr<SessionMedia> media, const RenderAhead& renders)
    : session_(session)
    , jobs_(jobs)
    , media_(std::move(media))
    , renders_(renders)
    , comparisonEnabled_(notifier, Property::comparisonEnabled)
    , comparisonMessage_(notifier, Property::comparisonMessage)
    , comparisonPair_(notifier, Property::comparisonPair)
    , changes_(notifier.subscribe(
          properties({Property::scrubPosition, Property::keyframes, Property::curveSmoothing, Property::trimRange,
                      Property::isVerticalCropEnabled, Property::centerKeyframes, Property::centerSmoothing}),
          [this](const PropertySet&) { request(); })) {}

void Comparison::setComparisonEnabled(bool enabled) {
    ++comparisonID_;
    isDecoding_ = comparisonPending_ = false;
    comparisonMessage_.set({});
    comparisonPair_.set(nullptr);
    comparisonEnabled_.set(enabled && session_.clip());
    request();
}

void Comparison::setComparisonSize(OutputSize size) {
    if (size == std::exchange(size_, size)) return;
    request();
}

void Comparison::request() {
    if (!comparisonEnabled() || comparisonMessage()) return;
    comparisonPending_ = isDecoding_;
    if (isDecoding_) return;
    isDecoding_ = true;
    const SourceSeconds time{session_.playheadSeconds()};
    jobs_.start(
        BackgroundQueue::frames,
        [media = media_, clip = session_.clip(), time, size = size_] { return media->sourceFrame(clip, time, size); },
        [this, id = comparisonID_, time](Outcome<SourceFrame>& outcome) {
            if (id == comparisonID_) receive(outcome, time);
        });
}

void Comparison::receive(Outcome<SourceFrame>& outcome, SourceSeconds requested) {
    isDecoding_ = false;
    try {
        SourceFrame& found = outcome.get();
        ComparisonPair pair;
        pair.original = std::move(found.picture);
        pair.times = {requested, found.time, session_.curve.timeMap().outputTime(requested)};
        if (session_.framing.isVerticalCropEnabled()) pair.pan = session_.framing.glidedCropTravel(requested.value);
        comparisonPair_.set(std::make_shared<const ComparisonPair>(std::move(pair)));
    } catch (const std::exception&) {
        comparisonPair_.set(nullptr);
        comparisonMessage_.set("Could not decode the original frame. Toggle Compare to retry.");
    }
    if (std::exchange(comparisonPending_, false)) request();
}

std::optional<ComparisonFrameTimes> Comparison::comparisonFrameTimes() const {
    return comparisonPair() ? std::optional(comparisonPair()->times) : std::nullopt;
}

ComparisonDisplayState Comparison::comparisonDisplayState() const {
    using Picture = ComparisonDisplayState::Picture;
    if (!comparisonEnabled()) return {};
    if (comparisonMessage()) return {Picture::failed, label()};
    return {comparisonPair() ? Picture::pair : Picture::loading, label()};
}

std::string Comparison::label() const {
    const double playhead = session_.playheadSeconds();
    for (const OpticalFlowRange& range : session_.flow.opticalFlowRanges()) {
        if (playhead < range.start || playhead >= range.end) continue;
        const bool isOn =
            session_.flow.frameInterpolation() == FrameInterpolation::opticalFlow && session_.flow.isSwitchedOn(range);
        if (!isOn) return "Original frames · Optical Flow off";
        return renders_.previews().isShownAt({playhead}) ? "Preview rendered" : "Optical Flow · preview not rendered";
    }
    return {};
}

} // namespace flowtide
