// Walking a composition.
#include "media/player/playback_route.h"

#include "media/media_time.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

MediumId MediumNumbers::of(const CompositionMedium& medium) {
    const auto [entry, isNew] = numbers_.try_emplace(medium.url.string(), last_ + 1);
    if (isNew) ++last_;
    return entry->second;
}

PlaybackRoute::PlaybackRoute(std::shared_ptr<const PlaybackItem> item, MediumNumbers& numbers)
    : item_(std::move(item)) {
    for (const CompositionMedium& medium : item_->media.asset.media)
        ids_.push_back(numbers.of(medium));
    if (item_->proxy && item_->proxiedMedium < ids_.size()) proxy_ = numbers.of(*item_->proxy);
}

PlaybackRoute::Medium PlaybackRoute::mediumOf(std::size_t index, PictureSource source) const {
    if (source == PictureSource::proxy && proxy_ && index == item_->proxiedMedium) return {*proxy_, &*item_->proxy};
    return {ids_[index], &item_->media.asset.media[index]};
}

double PlaybackRoute::fileTime(const CompositionStretch& stretch, OutputSeconds time, PictureSource source) const {
    const CompositionMedium& medium = item_->media.asset.media[stretch.medium];
    if (medium.renderedMap)
        return medium.startOffset + medium.renderedMap->outputTime(item_->media.timeMap.sourceTime(time)).value;
    return stretch.at(time).fileSeconds - medium.startOffset + mediumOf(stretch.medium, source).medium->startOffset;
}

std::optional<RoutePlace> PlaybackRoute::at(OutputSeconds time, PictureSource source) const {
    const auto stretch = item_->media.asset.videoStretchAt(time);
    if (!stretch) return std::nullopt;
    double place = fileTime(*stretch, time, source);
    // The ends, which can lie half a tick beside where the clip is cut, belong to the frames between them, not to those
    // that come before and next in the file.
    if (time.value <= 0) place += CompositionTime::tickSeconds;
    if (time.value >= duration()) place -= CompositionTime::tickSeconds;
    const MediumId id = mediumOf(stretch->medium, source).id;
    return RoutePlace{id, place, id == ids_[stretch->medium]};
}

std::vector<RouteStretch> PlaybackRoute::ahead(OutputSeconds time, int direction, double seconds,
                                               PictureSource source) const {
    std::vector<RouteStretch> way;
    const bool forwards = direction > 0;
    double at = std::clamp(time.value, 0.0, duration());
    const double end = std::clamp(at + (forwards ? seconds : -seconds), 0.0, duration());
    while (forwards ? at < end : at > end) {
        const auto stretch =
            item_->media.asset.videoStretchAt({at}, forwards ? PlayDirection::forward : PlayDirection::backward);
        if (!stretch) break;
        const double next =
            forwards ? std::min(stretch->outputEnd.value, end) : std::max(stretch->outputStart.value, end);
        const double from = fileTime(*stretch, {at}, source);
        const double to = fileTime(*stretch, {next}, source);
        const MediumId id = mediumOf(stretch->medium, source).id;
        if (!way.empty() && way.back().medium == id && std::abs(way.back().to - from) <= frameReachedGraceSeconds)
            way.back().to = to;
        else
            way.push_back({id, from, to});
        if (forwards ? next <= at : next >= at) break;
        at = next;
    }
    return way;
}

bool PlaybackRoute::isRenderedPreview(OutputSeconds time) const {
    return std::ranges::any_of(item_->media.asset.cachedPreviews, [&](const CompositionSegment& segment) {
        return segment.outputStart.seconds() <= time.value && time.value < segment.outputEnd.seconds();
    });
}

bool PlaybackRoute::isPreviewMedium(MediumId id) const {
    return std::ranges::any_of(item_->media.asset.cachedPreviews,
                               [&](const CompositionSegment& segment) { return ids_[segment.medium] == id; });
}

bool PlaybackRoute::sharesMediaWith(const PlaybackRoute& other) const {
    return std::ranges::find_first_of(ids_, other.ids_) != ids_.end();
}

const CompositionMedium* PlaybackRoute::medium(MediumId id) const {
    if (proxy_ == id) return &*item_->proxy;
    const auto found = std::ranges::find(ids_, id);
    return found == ids_.end() ? nullptr : &item_->media.asset.media[static_cast<std::size_t>(found - ids_.begin())];
}

} // namespace flowtide
