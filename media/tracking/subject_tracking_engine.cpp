// Walks both ways, and puts what they found in the order of time.
#include "media/tracking/subject_tracking_engine.h"

#include "core/subject_continuity.h"
#include "media/imported_clip.h"
#include "media/media_io.h"
#include "media/tracking/correlation_tracker.h"
#include "media/tracking/picture_walk.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace flowtide {

namespace {

using namespace tracking;

constexpr std::int64_t progressInterval = 10; ///< frames
constexpr double mostProgress = 0.99;         ///< the rest is for what is made of the samples

/// Counts frames, of both directions together.
class Progress {
public:
    Progress(const SubjectTrackingCallbacks& callbacks, double frames)
        : callbacks_(callbacks)
        , frames_(std::max(frames, 1.0)) {}

    void frameDone() {
        if (++done_ % progressInterval == 0 && callbacks_.progress)
            callbacks_.progress(std::min(static_cast<double>(done_) / frames_, mostProgress));
    }

private:
    const SubjectTrackingCallbacks& callbacks_;
    double frames_;
    std::int64_t done_ = 0;
};

std::optional<SubjectBox> boxAt(const DirectionTracking& direction, double time) {
    const auto& sightings = direction.sightings();
    if (sightings.empty() || sightings.back().time != time) return std::nullopt;
    return sightings.back().box;
}

/// Follows one direction to its end. True when it was given up.
bool followAll(DirectionTracking& direction, PictureWalk& walk, Progress& progress,
               const SubjectTrackingCallbacks& callbacks) {
    std::size_t told = 0;
    bool wasLooking = false;
    bool isGivenUp = false;
    while (!isGivenUp) {
        const auto picture = walk.next();
        if (!picture) break;
        isGivenUp = !direction.follow(picture->picture, picture->time);
        for (; callbacks.sighted && told < direction.sightings().size(); ++told)
            callbacks.sighted(direction.sightings()[told]);
        if (callbacks.looking && wasLooking != direction.isLooking()) callbacks.looking(direction.isLooking());
        wasLooking = direction.isLooking();
        if (callbacks.looked) callbacks.looked(*picture, boxAt(direction, picture->time));
        progress.frameDone();
    }
    if (callbacks.looking && wasLooking) callbacks.looking(false);
    return isGivenUp;
}

void append(const DirectionTracking& direction, SubjectTrackResult& result) {
    for (const Sighting& sighting : direction.sightings())
        result.samples.push_back({sighting.time, sighting.box.midX()});
    result.lostFrames.insert(result.lostFrames.end(), direction.lostFrames().begin(), direction.lostFrames().end());
}

} // namespace

SubjectTrackResult SubjectTrackingEngine::track(const ImportedClip& clip, SourceSeconds seedTime,
                                                const SubjectBox& seedBox, SourceRange range,
                                                const SubjectTrackingCallbacks& callbacks) const {
    const SourceRange within{std::max(range.lower, 0.0), std::min(range.upper, clip.duration)};
    const bool isInside = SubjectTrackingContinuity().accept(seedBox, 1, seedTime.value);
    if (!isInside || !(within.lower < within.upper) || !(seedTime.value >= within.lower) ||
        !(seedTime.value <= within.upper))
        throw FlowtideError::trackingFailed("Choose a subject inside the video and a valid tracking range.");

    const PictureSource source{backend_, clip, callbacks.isCancelled};
    // The seed's frame has its own time, or the walk back would find it a second time.
    const auto forwardWalk = walkForwards(source, {seedTime.value, within.upper}, within.lower);
    const auto seed = forwardWalk->next();
    if (!seed) throw FlowtideError::trackingFailed(cannotDecode);
    const auto tracker = makeCorrelationTracker(seed->picture, seedBox, instructions_);
    Progress progress(callbacks, (within.upper - within.lower) / clip.frameDuration.seconds());
    DirectionTracking forward(tracker->copy(), seedBox, seed->time);
    DirectionTracking backward(tracker->copy(), seedBox, seed->time);
    if (callbacks.sighted) callbacks.sighted({seed->time, seedBox});
    if (callbacks.looked) callbacks.looked(*seed, seedBox);
    progress.frameDone();

    const bool gaveUpForward = followAll(forward, *forwardWalk, progress, callbacks);
    const auto backwardWalk = walkBackwards(source, {within.lower, seed->time});
    const bool gaveUpBackward = followAll(backward, *backwardWalk, progress, callbacks);

    SubjectTrackResult result;
    append(backward, result);
    std::reverse(result.samples.begin(), result.samples.end());
    std::reverse(result.lostFrames.begin(), result.lostFrames.end());
    result.samples.push_back({seed->time, seedBox.midX()});
    append(forward, result);
    result.lostBeforeSeed = backward.isLooking();
    result.lostAfterSeed = forward.isLooking();
    result.lostSubject = gaveUpForward || gaveUpBackward;
    return result;
}

} // namespace flowtide
