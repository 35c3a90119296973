// The playhead, the picture and the sound kept together.
#include "media/player/preview_player.h"

#include "media/media_time.h"
#include "media/player/null_audio_output.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

// A playhead that has stood this long is no longer being dragged.
constexpr double restSeconds = 0.15;
// From this speed on, and backwards, nobody sees more than a proxy shows.
constexpr double proxySpeed = 2;
// Play begins with this much of it decoded, but waits no longer than that for it.
constexpr double readySeconds = 0.05;
constexpr double longestBeginSeconds = 0.3;
// When frames of the exact medium have been missing for this long at usual speeds, its proxy is played.
constexpr double tooSlowSeconds = 0.3;
// A device that plays nothing for this long is taken for dead.
constexpr double deadDeviceSeconds = 1;
// One that has played for this long, more than a device asks for ahead, has worked, and may again.
constexpr double workingDeviceSeconds = 0.5;

// The better one first.
constexpr std::array pictureSources{PictureSource::exact, PictureSource::proxy};

/// By way of a copy: a callback may end the player, and itself with it.
void call(const std::function<void()>& callback) {
    if (const auto copy = callback) copy();
}

} // namespace

PreviewPlayer::PreviewPlayer(PlayerPlatform platform)
    : platform_(std::move(platform))
    , cache_(platform_.cacheBytes)
    , alive_(std::make_shared<Alive>(Alive{this})) {
    // One call on its way is enough: it looks at everything.
    postUpdate_ = [post = platform_.post, alive = std::weak_ptr(alive_),
                   posted = std::make_shared<std::atomic<bool>>(false)] {
        if (posted->exchange(true)) return;
        post([alive, posted] {
            posted->store(false);
            // A share held during the call would hide from it that the player has ended.
            PreviewPlayer* player = nullptr;
            if (const auto living = alive.lock()) player = living->player;
            if (player) player->update();
        });
    };
    decoder_ = std::make_unique<FrameDecoder>(*platform_.backend, *platform_.clock, cache_, postUpdate_);
}

PreviewPlayer::~PreviewPlayer() = default;

void PreviewPlayer::setItem(std::shared_ptr<const PlaybackItem> item) {
    const double now = platform_.clock->seconds();
    const OutputSeconds position = currentTime();
    const SeekCompletion superseded = std::exchange(seekCompletion_, {});
    isSeeking_ = false;
    proxyFailed_ = exactIsTooSlow_ = false;
    decoder_->forgetFailures();
    if (!item) numbers_.renew();
    const auto before =
        std::exchange(route_, item ? std::make_shared<PlaybackRoute>(std::move(item), numbers_) : nullptr);
    const bool isEdit = route_ && before && route_->sharesMediaWith(*before);
    if (!isEdit) {
        picture_.reset();
        displayed_.reset();
    }
    if (!route_) {
        output_.reset();
        feed_.reset();
        timeline_ = {};
        requestedRate_ = 0;
        begins_ = false;
        decoder_->aim({});
    } else {
        PlaybackTimeline timeline(route_->duration());
        timeline.moveTo(position, now);
        timeline.setRate(timeline_.rate(), now);
        timeline_ = timeline;
        restClock_ = now;
        openSound();
    }
    const std::weak_ptr<Alive> alive = alive_;
    if (superseded) superseded(false);
    if (!alive.expired() && (!isEdit || status_ == PlayerStatus::failed)) setStatus(PlayerStatus::unknown);
    if (!alive.expired()) update();
}

void PreviewPlayer::openSound() {
    const PlaybackItem& item = route_->item();
    if (!item.sound || !(item.sound->sampleRate >= 1) || item.sound->channels < 1) {
        if (output_ && timeline_.rate() != 0) timeline_.moveTo(currentTime(), platform_.clock->seconds());
        output_.reset();
        feed_.reset();
        return;
    }
    const AudioFormat format{static_cast<int>(std::lround(item.sound->sampleRate)),
                             deviceChannels(item.sound->channels)};
    // The map is the item's own; the share keeps the item.
    PlayableSound sound{item.sound, {route_, &item.media.timeMap}};
    if (output_ && feed_ && feed_->format() == format) {
        feed_->setSound(std::move(sound));
        return;
    }
    output_.reset();
    reopensDevice_ = false;
    feed_ = std::make_shared<SoundFeed>(format);
    feed_->setMuted(isMuted_);
    feed_->setSound(std::move(sound));
    const AudioPull pull = [feed = feed_](std::span<float> interleaved) { feed->pull(interleaved); };
    if (platform_.openAudio) output_ = platform_.openAudio(format, pull);
    if (!output_) output_ = std::make_unique<NullAudioOutput>(format, pull, *platform_.clock);
    if (timeline_.rate() == 0) return;
    feed_->playFrom(timeline_.position(platform_.clock->seconds()), timeline_.rate());
    output_->start();
    heardFrames_ = 0;
    heardClock_ = platform_.clock->seconds();
}

void PreviewPlayer::setMuted(bool muted) {
    isMuted_ = muted;
    if (feed_) feed_->setMuted(muted);
}

void PreviewPlayer::play(double rate) {
    rate = playableRate(rate);
    const double now = platform_.clock->seconds();
    const OutputSeconds position = currentTime();
    if (!route_ || rate == requestedRate_) return;
    const double before = std::exchange(requestedRate_, rate);
    if (rate == 0) {
        stop(position, now);
    } else if (!begins_ && before * rate > 0) {
        timeline_.setRate(rate, now);
        if (feed_) feed_->setRate(rate);
    } else {
        if (output_) output_->pause();
        timeline_.moveTo(position, now);
        timeline_.setRate(0, now);
        begins_ = true;
        beginClock_ = now;
        if (reopensDevice_) {
            output_.reset();
            openSound();
        }
    }
    exactIsTooSlow_ = false;
    update();
}

void PreviewPlayer::stop(OutputSeconds position, double now) {
    if (output_) output_->pause();
    requestedRate_ = 0;
    begins_ = false;
    timeline_.setRate(0, now);
    timeline_.moveTo(position, now);
    restClock_ = now;
}

OutputSeconds PreviewPlayer::currentTime() {
    const double now = platform_.clock->seconds();
    followSound(now);
    return timeline_.position(now);
}

/// What is heard is where the playhead is.
void PreviewPlayer::followSound(double now) {
    if (!output_ || timeline_.rate() == 0) return;
    const double heard = output_->heardFrames();
    if (heard > heardFrames_) {
        heardFrames_ = heard;
        heardClock_ = now;
    } else if (now - heardClock_ > deadDeviceSeconds) {
        const OutputSeconds position = feed_->positionAt(heard);
        auto silent = std::make_unique<NullAudioOutput>(
            feed_->format(), [feed = feed_](std::span<float> interleaved) { feed->pull(interleaved); },
            *platform_.clock);
        output_ = std::move(silent);
        // One that never works would hold up the start of every play.
        reopensDevice_ = heard > workingDeviceSeconds * feed_->format().sampleRate;
        feed_->restartFrom(position, timeline_.rate());
        output_->start();
        heardFrames_ = 0;
        heardClock_ = now;
    }
    timeline_.moveTo(feed_->positionAt(heardFrames_), now);
}

void PreviewPlayer::seek(OutputSeconds time, SeekCompletion completion) {
    const double now = platform_.clock->seconds();
    const SeekCompletion superseded = std::exchange(seekCompletion_, std::move(completion));
    isSeeking_ = true;
    ++seekCount_;
    jump(time, now);
    decoder_->forgetFailures(); // a file can lack what comes at one time and have the rest
    const std::weak_ptr<Alive> alive = alive_;
    if (superseded) superseded(false);
    if (!alive.expired() && status_ == PlayerStatus::failed) setStatus(PlayerStatus::unknown);
    if (!alive.expired()) update();
}

void PreviewPlayer::jump(OutputSeconds time, double now) {
    if (timeline_.rate() != 0) {
        if (output_) output_->pause();
        timeline_.setRate(0, now);
        begins_ = true;
        beginClock_ = now;
    }
    timeline_.moveTo(time, now);
    restClock_ = now;
}

void PreviewPlayer::update() {
    if (!route_) return;
    const std::weak_ptr<Alive> alive = alive_;
    const double now = platform_.clock->seconds();
    followSound(now);
    const bool ended = timeline_.ended(now);
    if (ended) stop(timeline_.position(now), now);
    if (begins_) beginWhenReady(now);
    refresh(now);
    if (!alive.expired() && route_) takeConverted();
    if (ended && !alive.expired() && requestedRate_ == 0) call(onEnd);
}

void PreviewPlayer::beginWhenReady(double now) {
    if (!isReadyToPlay() && now - beginClock_ < longestBeginSeconds) return;
    begins_ = false;
    const OutputSeconds position = timeline_.position(now);
    timeline_.moveTo(position, now);
    timeline_.setRate(requestedRate_, now);
    if (!output_) return;
    feed_->playFrom(position, requestedRate_);
    output_->start();
    heardFrames_ = output_->heardFrames();
    heardClock_ = now;
}

bool PreviewPlayer::isReadyToPlay() const {
    const double now = platform_.clock->seconds();
    const OutputSeconds position = timeline_.position(now);
    if (!dueFrame(position)) return false;
    const int direction = requestedRate_ < 0 ? -1 : 1;
    const auto way = route_->ahead(position, direction, readySeconds * std::abs(requestedRate_), source(now));
    return std::ranges::all_of(way, [&](const RouteStretch& stretch) {
        return cache_.coveredUntil(stretch.medium, stretch.from, direction, stretch.to) == stretch.to;
    });
}

PictureSource PreviewPlayer::source(double now) const {
    if (!route_->hasProxy() || proxyFailed_) return PictureSource::exact;
    if (requestedRate_ != 0) {
        const bool looksTheSame = requestedRate_ < 0 || requestedRate_ >= proxySpeed;
        return looksTheSame || exactIsTooSlow_ ? PictureSource::proxy : PictureSource::exact;
    }
    const bool rests = now - restClock_ >= restSeconds;
    return rests || isCached(timeline_.position(now), PictureSource::exact) ? PictureSource::exact
                                                                            : PictureSource::proxy;
}

bool PreviewPlayer::isCached(OutputSeconds time, PictureSource source) const {
    const auto place = route_->at(time, source);
    return place && cache_.find(place->medium, place->time);
}

std::optional<PreviewPlayer::Found> PreviewPlayer::dueFrame(OutputSeconds time) const {
    for (const PictureSource source : pictureSources) {
        const auto place = route_->at(time, source);
        if (!place) return std::nullopt;
        if (auto frame = cache_.find(place->medium, place->time))
            return Found{place->medium, std::move(*frame), place->isExact};
    }
    return std::nullopt;
}

void PreviewPlayer::refresh(double now) {
    const std::weak_ptr<Alive> alive = alive_;
    const bool failed = noticeFailures();
    if (alive.expired() || !route_) return;
    const OutputSeconds time = timeline_.position(now);
    // Asked before looking: what comes in between is told.
    const PictureSource wanted = source(now);
    const bool isMissing = !isCached(time, wanted);
    const auto due = dueFrame(time);
    const std::uint64_t seekNumber = seekCount_; // callbacks may seek again
    if (due) {
        missingSince_.reset();
    } else {
        if (!missingSince_) missingSince_ = now;
        if (timeline_.rate() != 0 && now - *missingSince_ > tooSlowSeconds) exactIsTooSlow_ = true;
    }
    decoder_->aim({route_, timeline_, requestedRate_, wanted, isMissing});

    if (due) {
        show(*due, time, true);
        if (alive.expired() || failed) return;
        setStatus(PlayerStatus::ready);
        if (!alive.expired() && seekNumber == seekCount_) finishSeek(true);
        return;
    }
    if (picture_) picture_->isDue = picture_->isExact = false;
    const auto progress = decoder_->progress();
    const bool isWanted = now - std::max(*missingSince_, progressClock_) >= progressIntervalSeconds;
    if (!progress || progress->number <= shownProgress_ || !isWanted) return;
    shownProgress_ = progress->number;
    if (!fitsPlay(*progress, time)) return;
    progressClock_ = now;
    show({progress->medium, progress->frame, false}, time, false);
}

/// The way to a frame begins at a key frame, behind what play has shown already, and leads ahead of what is heard.
bool PreviewPlayer::fitsPlay(const FrameDecoder::Progress& progress, OutputSeconds time) const {
    const double rate = timeline_.rate();
    if (rate == 0) return true;
    const bool isAgain =
        picture_ && picture_->medium == progress.medium && (progress.frame.time - picture_->fileTime) * rate <= 0;
    return !isAgain && std::ranges::any_of(pictureSources, [&](PictureSource source) {
        const auto place = route_->at(time, source);
        return place && place->medium == progress.medium &&
               (progress.frame.time - place->time) * rate <= frameReachedGraceSeconds;
    });
}

/// Goes round media that cannot be read; true when there is no way round.
bool PreviewPlayer::noticeFailures() {
    const OutputSeconds time = timeline_.position(platform_.clock->seconds());
    const auto proxy = route_->at(time, PictureSource::proxy);
    if (proxy && !proxy->isExact && decoder_->failureOf(proxy->medium)) proxyFailed_ = true;
    const auto exact = route_->at(time, PictureSource::exact);
    const auto failure = exact ? decoder_->failureOf(exact->medium) : std::nullopt;
    if (!failure) return false;
    if (route_->isRenderedPreview(time)) {
        // What a preview was rendered from is still there.
        auto plain = std::make_shared<PlaybackItem>(route_->item());
        plain->media.asset.cachedPreviews.clear();
        route_ = std::make_shared<PlaybackRoute>(std::move(plain), numbers_);
        return false;
    }
    const std::weak_ptr<Alive> alive = alive_;
    setStatus(PlayerStatus::failed, *failure);
    if (!alive.expired()) finishSeek(false);
    return true;
}

bool PreviewPlayer::isActive() const {
    if (!route_ || status_ == PlayerStatus::failed) return false;
    return requestedRate_ != 0 || isSeeking_ || !picture_ || !picture_->isExact;
}

void PreviewPlayer::show(const Found& found, OutputSeconds time, bool isDue) {
    const bool isSame = picture_ && picture_->medium == found.medium && picture_->fileTime == found.frame.time;
    const bool isExact = isDue && found.isExact;
    const bool changes = !isSame || picture_->isDue != isDue || picture_->isExact != isExact;
    if (!isSame) {
        picture_ = PlayerPicture{};
        picture_->frame = found.frame.frame;
        picture_->medium = found.medium;
        picture_->fileTime = found.frame.time;
        describe(*picture_);
        display();
    }
    picture_->time = time;
    picture_->isDue = isDue;
    picture_->isExact = isExact;
    if (displayed_ && displayed_->picture.hasSameFrame(*picture_)) displayed_->picture = *picture_;
    if (changes) call(onPicture);
}

/// What a display has to know of a picture beside its samples.
void PreviewPlayer::describe(PlayerPicture& picture) const {
    picture.isRendered = route_->isPreviewMedium(picture.medium);
    const MediumId original = route_->originalOf(picture.medium);
    const CompositionMedium* medium = route_->medium(original);
    const auto file = decoder_->clipOf(picture.medium);
    auto clip = medium && medium->clip ? medium->clip : decoder_->clipOf(original);
    if (!clip) clip = file;
    if (!clip) return;
    picture.color = pictureColor(*clip);
    picture.size = {clip->width, clip->height};
    picture.orientation = file ? file->preferredTransform : clip->preferredTransform;
}

void PreviewPlayer::setDisplaySize(std::optional<OutputSize> box) {
    if (std::exchange(displayBox_, box) == box) return;
    if (!box) displayed_.reset();
    display();
}

void PreviewPlayer::display() {
    if (!displayBox_ || !picture_) return;
    if (!converter_) converter_ = std::make_unique<PictureConverter>(postUpdate_);
    converter_->convert(*picture_, *displayBox_);
}

void PreviewPlayer::takeConverted() {
    auto converted = converter_ && displayBox_ ? converter_->take() : std::nullopt;
    // Another item may have come in between.
    if (!converted || !route_->medium(converted->picture.medium)) return;
    if (picture_ && converted->picture.hasSameFrame(*picture_)) converted->picture = *picture_;
    displayed_ = std::move(converted);
    call(onDisplay);
}

void PreviewPlayer::setStatus(PlayerStatus status, const std::string& failure) {
    if (std::exchange(status_, status) == status && failure_ == failure) return;
    failure_ = failure;
    call(onStatus);
}

void PreviewPlayer::finishSeek(bool finished) {
    if (!std::exchange(isSeeking_, false)) return;
    if (const SeekCompletion completion = std::exchange(seekCompletion_, {})) completion(finished);
}

} // namespace flowtide
