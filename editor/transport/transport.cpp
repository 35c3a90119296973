// The course of a play.
#include "editor/transport/transport.h"

#include "core/clamp.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
/// Output seconds: what a conversion to source time and back may stray by.
constexpr double inPlaceSeconds = 1e-6;
} // namespace

Transport::Transport(EditSession& session, PreviewRefresh& refresh, SessionPlayer& player, Scheduler& scheduler,
                     ChangeNotifier& notifier, RenderAhead& renders, LogSink log)
    : session_(session)
    , refresh_(refresh)
    , player_(player)
    , scheduler_(scheduler)
    , renders_(renders)
    , log_(std::move(log))
    , preparation_(scheduler, player)
    , isPlaying_(notifier, Property::isPlaying)
    , isStartingPlayback_(notifier, Property::isStartingPlayback)
    , shuttleRate_(notifier, Property::shuttleRate)
    , loopSeekPending_(notifier, Property::loopSeekPending)
    , isMuted_(notifier, Property::isMuted) {}

void Transport::togglePlayback() {
    if (isPlaying() || isStartingPlayback())
        pausePlayback();
    else
        startPlayback(1);
}

void Transport::shuttleForward() {
    const float rate = shuttleRate();
    startPlayback(rate <= 0 ? 1 : std::min(2 * rate, fastestRate));
}

void Transport::shuttleBackward() {
    const float rate = shuttleRate();
    startPlayback(rate >= 0 ? -1 : std::max(2 * rate, -fastestRate));
}

void Transport::startPlayback(float rate) {
    if (!session_.clip()) return;
    if (rate == 0 || std::isnan(rate)) return pausePlayback();
    rate = std::clamp(rate, -fastestRate, fastestRate);
    const OutputSeconds reached = player_.currentTime(); // asked for once: it goes on while this is decided
    if (isPlaying()) followPlayer(reached);
    playbackIntentToken_ = std::make_shared<const Intent>();
    preparation_.cancel();
    loopSeekPending_.set(false);
    isStartingPlayback_.set(true);
    startingRate_ = rate;
    if (refresh_.needsRefresh() || player_.status() == PlayerStatus::failed) {
        refresh_.refreshPreviewForCurrentCurve();
        if (!refresh_.isInstalled()) return stop(); // the refresh has said why
        return prepare(rate);
    }
    if (player_.status() != PlayerStatus::ready) return prepare(rate);
    const OutputSeconds from = startOf(rate);
    if (std::abs(from.value - reached.value) > inPlaceSeconds) player_.seek(from, {});
    play(rate, from);
}

void Transport::prepare(float rate) {
    const OutputSeconds from = startOf(rate);
    const TimeMap* const prepared = &refresh_.installedMap();
    preparation_.preparePlayer(from, [this, rate, from, prepared](const std::optional<std::string>& failure) {
        if (!failure) return play(rate, from);
        // Sound, a proxy or a render that arrives brings an item of its own, with a map of its own, which cuts the
        // seek off: once it is in place the start goes on with it.
        const bool isReplaced = refresh_.isInstalled() && &refresh_.installedMap() != prepared;
        if (!isReplaced) return fail(*failure);
        scheduler_.post([this, rate, intent = std::weak_ptr(playbackIntentToken_)] {
            if (!intent.expired()) prepare(rate);
        });
    });
}

void Transport::play(float rate, OutputSeconds from) {
    if (std::exchange(hasFailed_, false)) renders_.showPreviewError({});
    // The head start of backward play is none out of a range in which it was asked for.
    playedFrom_ = rate < 0 ? OutputSeconds{std::max(from.value, playhead().value)} : from;
    if (from != playhead()) followPlayer(from);
    player_.play(rate);
    isPlaying_.set(true);
    shuttleRate_.set(rate);
    isStartingPlayback_.set(false);
    playbackTimer_ = Timer(scheduler_, scheduler_.every(tickSeconds, [this] { playbackTick(); }));
}

void Transport::fail(const std::string& failure) {
    stop();
    hasFailed_ = true;
    renders_.showPreviewError(failure);
}

void Transport::pausePlayback() {
    if (!isPlaying() && !isStartingPlayback()) return;
    if (isPlaying()) followPlayer(player_.currentTime());
    stop();
    session_.scheduleProjectSave();
    renders_.scheduleSmartPreview();
}

void Transport::stop() {
    playbackIntentToken_ = std::make_shared<const Intent>();
    preparation_.cancel();
    playbackTimer_.cancel();
    player_.pause();
    isStartingPlayback_.set(false);
    loopSeekPending_.set(false);
    isPlaying_.set(false);
    shuttleRate_.set(0);
}

void Transport::setMuted(bool muted) {
    isMuted_.set(muted);
    player_.setMuted(muted);
}

void Transport::reset() {
    stop();
    hasFailed_ = false;
}

Transport::PlayRange Transport::trimmedOutput() const {
    return {session_.curve.trimRange(), {0}, {refresh_.installedMap().outputDuration()}};
}

std::optional<Transport::PlayRange> Transport::selectedRange() const {
    const auto source = renders_.selectedPreviewRange();
    if (!source) return std::nullopt;
    const TimeMap& map = refresh_.installedMap();
    const PlayRange selected{*source, map.outputTime({source->lower}), map.outputTime({source->upper})};
    // There would be no getting off its ends.
    if (selected.end.value - selected.start.value <= 2 * endTolerance) return std::nullopt;
    return selected;
}

std::optional<Transport::PlayRange> Transport::loopRange() const {
    return session_.timeline.loopPreview() ? selectedRange() : std::nullopt;
}

OutputSeconds Transport::playhead() const {
    return refresh_.installedMap().outputTime({session_.playheadSeconds()});
}

OutputSeconds Transport::startOf(float rate) const {
    const PlayRange range = loopRange().value_or(trimmedOutput());
    const OutputSeconds now = playhead();
    if (rate > 0) return now.value < range.end.value - endTolerance ? now : range.start;
    if (now.value <= range.start.value + endTolerance) return range.end;
    return {std::max(now.value - backwardHeadStart, range.start.value)};
}

void Transport::setPlayhead(double sourceTime) {
    session_.timeline.setScrubPosition(sourceTime / session_.curve.duration());
}

void Transport::followPlayer(OutputSeconds time) {
    if (!refresh_.isInstalled()) return;
    const SourceRange trim = session_.curve.trimRange();
    setPlayhead(clamped(refresh_.installedMap().sourceTime(time).value, trim.lower, trim.upper));
}

void Transport::playbackTick() {
    if (!refresh_.isInstalled()) return stop(); // a refresh has failed
    logRateAnomaly();
    const OutputSeconds time = player_.currentTime();
    const auto loop = loopRange();
    if (loop ? keepLooping(*loop, time) : stopAtEnd(time)) return;
    followPlayer(time);
}

/// Whether it had to jump.
bool Transport::keepLooping(const PlayRange& loop, OutputSeconds time) {
    if (loopSeekPending()) return false;
    const double start = loop.start.value;
    const double end = loop.end.value;
    const bool isOutside = time.value < start - loopTolerance || time.value > end + loopTolerance;
    const bool isForward = shuttleRate() >= 0;
    const bool isAtEnd = isForward ? time.value >= end - loopTolerance : time.value <= start + loopTolerance;
    if (!isOutside && !isAtEnd) return false;
    loopTo(isForward ? loop.start : loop.end);
    return true;
}

void Transport::loopTo(OutputSeconds time) {
    loopSeekPending_.set(true);
    player_.seek(time, [this, intent = std::weak_ptr(playbackIntentToken_)](bool) {
        if (!intent.expired()) loopSeekPending_.set(false);
    });
}

/// What plays until it ends.
Transport::PlayRange Transport::playRange() const {
    PlayRange range = trimmedOutput();
    const auto selected = selectedRange();
    // Backward, a selected range is left only by a play that begins at its start, or before it.
    if (selected && playedFrom_.value > selected->start.value + endTolerance) {
        range.start = selected->start;
        range.source.lower = selected->source.lower;
    }
    return range;
}

/// Whether it stopped.
bool Transport::stopAtEnd(OutputSeconds time) {
    const PlayRange range = playRange();
    const bool isOver = shuttleRate() > 0 ? time.value >= range.end.value - endTolerance
                                          : time.value <= range.start.value + endTolerance;
    if (isOver) finish(range);
    return isOver;
}

void Transport::finish(const PlayRange& range) {
    const bool isForward = shuttleRate() > 0;
    stop();
    setPlayhead(isForward ? range.source.upper : range.source.lower);
    player_.seek(isForward ? range.end : range.start, {});
    session_.scheduleProjectSave();
    renders_.scheduleSmartPreview();
}

void Transport::playerEnded() {
    if (!isPlaying() || !refresh_.isInstalled()) return;
    const float rate = shuttleRate();
    if (const auto loop = loopRange()) {
        if (!loopSeekPending()) loopTo(rate > 0 ? loop->start : loop->end);
        player_.play(rate);
    } else {
        finish(playRange());
    }
}

void Transport::playerStatusChanged() {
    preparation_.statusChanged();
    if (isPlaying() && player_.status() == PlayerStatus::failed) fail(player_.failureToShow());
}

void Transport::nudgePlayhead(int frames) {
    if (!session_.clip() || !(session_.curve.duration() > 0)) return;
    pausePlayback();
    if (refresh_.needsRefresh()) {
        refresh_.beginPreviewOperation();
        refresh_.refreshPreviewForCurrentCurve();
    }
    const TimeMap& map = session_.curve.timeMap();
    const double frame = session_.clip()->frameDuration.seconds();
    const double wanted = map.outputTime({session_.playheadSeconds()}).value + frames * frame;
    const OutputSeconds time{clamped(wanted, 0, std::max(map.outputDuration() - frame, 0.0))};
    scrub(map.sourceTime(time).value / session_.curve.duration(), false);
}

void Transport::scrub(double position, bool preservePlayback) {
    if (!session_.clip() || !std::isfinite(position)) return;
    renders_.cancelAutomaticRender();
    const SourceRange trim = session_.curve.trimRange();
    const double time = clamped(clamped(position, 0, 1) * session_.curve.duration(), trim.lower, trim.upper);
    if (!preservePlayback) pausePlayback();
    const double before = session_.playheadSeconds();
    setPlayhead(time);
    if (isStartingPlayback()) {
        startPlayback(startingRate_);
    } else if (refresh_.isInstalled()) {
        playedFrom_ = playhead();
        player_.seek(playedFrom_, {});
        if (isPlaying()) player_.play(shuttleRate());
    }
    if (session_.playheadSeconds() != before) session_.scheduleProjectSave();
    renders_.scheduleSmartPreview();
}

void Transport::logRateAnomaly() {
    const double now = scheduler_.now();
    if (!log_ || loopSeekPending() || player_.rate() == shuttleRate() || now - lastRateAnomalyLog_ < anomalyLogSeconds)
        return;
    lastRateAnomalyLog_ = now;
    log_(fmt::format("[Playback] The player's rate is {:g} instead of {:g}", player_.rate(), shuttleRate()));
}

} // namespace flowtide
