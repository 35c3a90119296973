// Gathers, and hands on.
#include "editor/jobs/tracking_reporter.h"

#include "media/tracking/picture_walk.h"

#include <utility>

namespace flowtide {

TrackingReporter::TrackingReporter(const ImportedClip& clip, std::function<void(TrackingProgress)> onProgress,
                                   std::function<double()> now)
    : onProgress_(std::move(onProgress))
    , now_(std::move(now))
    , preview_(clip) {}

SubjectTrackingCallbacks TrackingReporter::callbacks() {
    SubjectTrackingCallbacks callbacks;
    callbacks.progress = [this](double fraction) {
        latest_.fraction = fraction;
        report();
    };
    callbacks.sighted = [this](const tracking::Sighting& sighting) {
        latest_.samples.push_back({sighting.time, sighting.box.midX()});
    };
    callbacks.looking = [this](bool isLooking) {
        latest_.isLooking = isLooking;
        report();
    };
    callbacks.looked = [this](const tracking::TimedPicture& picture, const std::optional<SubjectBox>& box) {
        look(picture, box);
    };
    return callbacks;
}

void TrackingReporter::look(const tracking::TimedPicture& picture, const std::optional<SubjectBox>& box) {
    const double now = now_();
    if (now - shownAt_ < pictureIntervalSeconds) return;
    shownAt_ = now;
    latest_.view = std::make_shared<const SubjectView>(SubjectView{picture.time, box, preview_.draw(picture.picture)});
    report();
}

void TrackingReporter::report() {
    onProgress_(latest_);
    latest_.samples.clear();
    latest_.view.reset();
}

} // namespace flowtide
