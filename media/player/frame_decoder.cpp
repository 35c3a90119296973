// Decoding where the playhead is.
#include "media/player/frame_decoder.h"

#include "media/decode_layout.h"
#include "media/failure_sentence.h"
#include "media/flowtide_error.h"
#include "media/media_time.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <utility>

namespace flowtide {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// How far ahead to decode, in seconds of play: enough for a reader's hiccups, little enough to forget at a jump.
constexpr double playHorizonSeconds = 1;
// At rest: a step or the start of play finds its first frames.
constexpr double restHorizonSeconds = 0.35;
// Of the budget, for what lies ahead; the rest is for what lies behind, and for the frame in hand.
constexpr double aheadShare = 0.6;
// Backwards, one stretch is being shown while the next one is decoded.
constexpr double stretchShare = 0.3;
constexpr double longestStretchSeconds = 1;
// Frames that decode on their own come back as cheaply one by one; a few at a time save seeks.
constexpr double intraStretchFrames = 6;
// Just before a frame that was asked for nothing is left out: a step back finds its frame decoded.
constexpr double keptBeforeSeconds = 0.3;
// When decoding comes late it aims this far ahead, and twice as far each time that this proves too little.
constexpr double firstLeadSeconds = 0.02;
constexpr double longestLeadSeconds = 1;
constexpr double leadDecay = 0.9; // a frame
// A composition may lead through many rendered previews; each open reader holds a file and decoder threads.
constexpr std::size_t mostOpenReaders = 6;

} // namespace

FrameDecoder::FrameDecoder(const MediaBackend& backend, const PlaybackClock& clock, FrameCache& cache,
                           std::function<void()> notify)
    : backend_(backend)
    , clock_(clock)
    , cache_(cache)
    , notify_(std::move(notify))
    , thread_([this] { run(); }) {}

FrameDecoder::~FrameDecoder() {
    {
        const std::scoped_lock guard(lock_);
        stopping_ = true;
    }
    wake_.notify_one();
}

void FrameDecoder::aim(DecodeGoal goal) {
    {
        const std::scoped_lock guard(lock_);
        std::swap(goal_, goal);
        woken_ = true;
        if (std::exchange(forgetsFailures_, false)) ++round_;
        if (!goal_.route) {
            // The next goal may come before the decoder's thread has seen this one.
            forgets_ = true;
            progress_.reset();
            clips_.clear();
        }
    }
    wake_.notify_one();
}

std::optional<FrameDecoder::Progress> FrameDecoder::progress() const {
    const std::scoped_lock guard(lock_);
    return progress_;
}

std::optional<std::string> FrameDecoder::failureOf(MediumId medium) const {
    const std::scoped_lock guard(lock_);
    const auto found = failures_.find(medium);
    return found == failures_.end() ? std::nullopt : std::optional(found->second);
}

void FrameDecoder::forgetFailures() {
    const std::scoped_lock guard(lock_);
    failures_.clear();
    forgetsFailures_ = true;
}

std::shared_ptr<const ImportedClip> FrameDecoder::clipOf(MediumId medium) const {
    const std::scoped_lock guard(lock_);
    const auto found = clips_.find(medium);
    return found == clips_.end() ? nullptr : found->second;
}

void FrameDecoder::run() {
    bool busy = false;
    DecodeGoal goal;
    for (;;) {
        const DecodeGoal before = goal;
        bool forgets = false;
        {
            std::unique_lock guard(lock_);
            if (!busy) wake_.wait(guard, [this] { return woken_ || stopping_; });
            if (stopping_) return;
            goal = goal_;
            forgets = std::exchange(forgets_, false);
            stepRound_ = round_;
            // Once for every new goal, and again for as long as the owner finds the frame missing.
            if (std::exchange(woken_, false)) owes_ = owes_ || goal.isMissing || goal != before;
        }
        if (forgets) letGo(nullptr);
        if (goal.route != before.route) letGo(goal.route.get());
        busy = goal.route && step(goal);
    }
}

void FrameDecoder::letGo(const PlaybackRoute* route) {
    std::erase_if(media_, [route](const auto& entry) { return !route || !route->medium(entry.first); });
    if (route) return;
    held_.reset();
    cache_.clear();
}

bool FrameDecoder::step(const DecodeGoal& goal) {
    const OutputSeconds now = goal.timeline.position(clock_.seconds());
    const auto place = goal.route->at(now, goal.source);
    if (!place) return false;
    const Playhead playhead{place->medium, place->time, goal.rate < 0 ? -1 : 1};
    if (held_ && cache_.insert(held_->first, held_->second, playhead)) held_.reset();

    const bool covered = cache_.find(place->medium, place->time).has_value();
    if (covered) {
        lateSince_.reset();
        if (goal.isMissing && std::exchange(owes_, false)) notify_();
        const std::scoped_lock guard(lock_);
        progress_.reset();
    } else if (!lateSince_) {
        lateSince_ = clock_.seconds();
    }
    const auto gap = nextGap(goal, now, *place, covered);
    const auto isAt = [&gap](MediumId medium, double from, double end) {
        return gap && gap->medium == medium && from <= gap->time + frameReachedGraceSeconds && gap->time < end;
    };
    if (!tried_ || !isAt(tried_->medium, tried_->time, tried_->time + 2 * frameReachedGraceSeconds)) tries_ = 0;
    // What found no room is what comes next: until there is some, nothing is to be done.
    const bool isFull = held_ && isAt(held_->first, held_->second.from, held_->second.end);
    if (!gap || isFull) {
        if (goal.isBeginning() && std::exchange(owes_, false)) notify_();
        return false;
    }
    held_.reset();
    if (!decodeTowards(goal, *gap, playhead)) return false;
    if (goal.isBeginning()) notify_();
    return true;
}

OutputSeconds FrameDecoder::aimOf(const DecodeGoal& goal, OutputSeconds now, bool covered) {
    const double rate = goal.timeline.rate(); // 0 while play waits: then its very first frame is wanted
    if (rate == 0) lead_ = 0;
    if (covered || rate == 0) {
        // What has just proved right is remembered, and forgotten as frames come in time again.
        if (!std::exchange(aim_, std::nullopt)) lead_ *= leadDecay;
        return now;
    }
    const bool passed = aim_ && (rate > 0 ? *aim_ < now.value : *aim_ > now.value);
    const double farthest = now.value + rate * longestLeadSeconds;
    const bool jumped = aim_ && (rate > 0 ? *aim_ > farthest : *aim_ < farthest);
    if (passed) lead_ = std::clamp(2 * lead_, firstLeadSeconds, longestLeadSeconds);
    if (!aim_ || passed || jumped) aim_ = now.value + rate * lead_;
    return {*aim_};
}

std::optional<FrameDecoder::Gap> FrameDecoder::nextGap(const DecodeGoal& goal, OutputSeconds now,
                                                       const RoutePlace& place, bool covered) {
    const int direction = goal.rate < 0 ? -1 : 1;
    const OutputSeconds aim = aimOf(goal, now, covered);
    if (!covered && aim == now) return Gap{place.medium, place.time, place.time, direction, true};

    const double horizon = goal.rate == 0 ? restHorizonSeconds : playHorizonSeconds * std::abs(goal.rate);
    double used = 0; // share of the room that the stretches so far take
    for (const RouteStretch& stretch : goal.route->ahead(aim, direction, horizon, goal.source)) {
        if (failureOf(stretch.medium)) continue;
        const auto known = media_.find(stretch.medium);
        const double room = known == media_.end() ? infinity : roomSeconds(known->second);
        const double length = std::min(std::abs(stretch.to - stretch.from), room * (1 - used));
        const double limit = stretch.from + direction * length;
        const double reached = cache_.coveredUntil(stretch.medium, stretch.from, direction, limit);
        const bool complete = direction > 0 ? reached >= limit : reached <= limit;
        if (!complete) return Gap{stretch.medium, reached, stretch.to, direction, !covered};
        used += length / room;
        if (used >= 1) break;
    }
    return std::nullopt;
}

bool FrameDecoder::decodeTowards(const DecodeGoal& goal, const Gap& gap, const Playhead& playhead) {
    if (failureOf(gap.medium)) return false;
    try {
        Medium& medium = opened(goal, gap.medium);
        if (!preparesFor(medium, gap)) return false;
        if (auto frame = nextFrame(medium))
            take(gap, medium, std::move(*frame), playhead);
        else if (medium.last)
            cache_.insert(gap.medium, *medium.last, playhead);
        return true;
    } catch (const FlowtideError& error) {
        media_.erase(gap.medium);
        if (error.kind() == FlowtideError::Case::exportCancelled) return true;
        fail(gap.medium, error.what());
    } catch (const std::exception& error) {
        media_.erase(gap.medium);
        fail(gap.medium, sentenceFor(error));
    }
    return false;
}

/// The reader's next frame; nothing at the end, where the last frame is shown on for ever.
std::optional<SpannedFrame> FrameDecoder::nextFrame(Medium& medium) {
    std::optional<SpannedFrame> frame;
    try {
        frame = medium.reader->next();
    } catch (const FlowtideError& error) {
        // What comes before the damage can be played.
        if (!medium.last || error.kind() == FlowtideError::Case::exportCancelled) throw;
    }
    if (!frame) {
        medium.position = infinity;
        if (medium.last) medium.last->end = infinity;
    }
    return frame;
}

/// Brings the reader to where the next frame is worth decoding; false when the gap cannot be closed.
bool FrameDecoder::preparesFor(Medium& medium, const Gap& gap) {
    // The stretch being decoded will come to the gap, wherever in it the playhead is by now.
    const bool goesOn = gap.direction < 0 && medium.stretchUntil && medium.position &&
                        *medium.position <= gap.time + frameReachedGraceSeconds &&
                        gap.time <= *medium.stretchUntil + frameReachedGraceSeconds;
    if (goesOn) return true;

    const bool isIntra = medium.reader->everyFrameIsKey();
    const double frames = isIntra ? intraStretchFrames : infinity;
    const double reach = std::min(
        {roomSeconds(medium) / aheadShare * stretchShare, longestStretchSeconds, frames * frameSeconds(medium)});
    const MissingStretch missing{gap.time, gap.direction, reach, gap.floor};
    const DecodePlan plan = planDecode(missing, medium.position, [&](double time) {
        // An index tells when key frames are decoded, which is before they are shown. Where a seek has led behind the
        // one that was promised, another would do no better.
        const double key = medium.reader->keyFrameAt(time);
        return key == medium.soughtKey ? -infinity : key;
    });
    if (plan.seeks) {
        // The first time frames may be left out, among them the wanted one where intervals are irregular; the second
        // time all come. What is not there then does not exist.
        if (tries_ >= 2) {
            if (gap.isUrgent) throw FlowtideError::readerFailed("Video decode failed mid-file");
            return false;
        }
        ++tries_;
        tried_ = gap;
        medium.reader->seekTo(plan.from);
        medium.soughtKey = medium.reader->keyFrameAt(plan.from);
        medium.position.reset();
        medium.last.reset();
        medium.stretchUntil = gap.direction < 0 ? std::optional(gap.time) : std::nullopt;
    }
    const bool mayLeaveOut = !isIntra && tries_ < 2 && (gap.isUrgent || gap.direction < 0);
    medium.reader->skipTo(mayLeaveOut ? plan.from - keptBeforeSeconds : -infinity);
    return true;
}

void FrameDecoder::take(const Gap& gap, Medium& medium, SpannedFrame frame, const Playhead& playhead) {
    medium.frameBytes = byteCount(frame.frame);
    // A frame is shown until the next one, whatever the file says of its duration; and where a track has nothing
    // earlier its first frame stands in.
    if (medium.last && medium.reader->everyFrameIsKey() && medium.last->end < frame.from) {
        medium.last->end = frame.from;
        cache_.insert(gap.medium, *medium.last, playhead);
    }
    if (!medium.position && frame.from > gap.time && (gap.direction > 0 || gap.isUrgent)) frame.from = gap.time;
    medium.position = frame.end;
    medium.last = frame;
    const bool kept = cache_.insert(gap.medium, frame, playhead);
    const bool ahead = gap.direction > 0 && frame.end > gap.time;
    if (!kept && ahead) held_ = {gap.medium, frame};
    if (gap.isUrgent) showProgress(gap, frame);
}

void FrameDecoder::showProgress(const Gap& gap, const SpannedFrame& frame) {
    const double now = clock_.seconds();
    {
        const std::scoped_lock guard(lock_);
        if (forgets_) return;
        progress_ = Progress{gap.medium, frame, ++progressCount_};
    }
    if (now - std::max(lastProgress_, lateSince_.value_or(now)) < progressIntervalSeconds) return;
    lastProgress_ = now;
    notify_();
}

FrameDecoder::Medium& FrameDecoder::opened(const DecodeGoal& goal, MediumId id) {
    Medium& medium = media_[id];
    medium.lastUse = ++uses_;
    if (medium.reader) return medium;
    const CompositionMedium* file = goal.route->medium(id);
    medium.clip = file->clip ? file->clip : std::make_shared<ImportedClip>(ImportedClip::load(backend_, file->url));
    medium.reader =
        backend_.openForPlayback(*medium.clip, decodePixelFormat(*medium.clip), [this, id] { return isUnwanted(id); });
    {
        const std::scoped_lock guard(lock_);
        clips_[id] = medium.clip;
    }
    closeUnused();
    return medium;
}

bool FrameDecoder::isUnwanted(MediumId id) const {
    const std::scoped_lock guard(lock_);
    return stopping_ || !goal_.route || !goal_.route->medium(id);
}

void FrameDecoder::closeUnused() {
    if (media_.size() <= mostOpenReaders) return;
    const auto oldest = std::ranges::min_element(media_, {}, [](const auto& entry) { return entry.second.lastUse; });
    media_.erase(oldest);
}

void FrameDecoder::fail(MediumId medium, const std::string& sentence) {
    {
        const std::scoped_lock guard(lock_);
        if (forgetsFailures_ || stepRound_ != round_) return;
        failures_[medium] = sentence;
    }
    notify_();
}

double FrameDecoder::frameSeconds(const Medium& medium) const {
    return medium.clip->frameDuration.seconds();
}

/// How many seconds ahead there is room for; at least a few frames, since the one at the playhead is always kept.
double FrameDecoder::roomSeconds(const Medium& medium) const {
    if (medium.frameBytes == 0) return infinity;
    const double frames = aheadShare * static_cast<double>(cache_.budget()) / static_cast<double>(medium.frameBytes);
    return std::max(std::floor(frames), 1.0) * frameSeconds(medium);
}

} // namespace flowtide
