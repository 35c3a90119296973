// The two workers of a proxy.
#include "media/preview/proxy_engine.h"

#include "media/export/interleave_gate.h"
#include "media/export/render_state.h"
#include "media/flowtide_error.h"
#include "media/preview/proxy_plan.h"
#include "media/preview/temporary_file.h"
#include "project/files/project_error.h"

#include <fmt/format.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <exception>
#include <future>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace flowtide {

namespace {

constexpr const char* videoLabel = "flowtide.proxy.video";
constexpr const char* audioLabel = "flowtide.proxy.audio";

constexpr double interleaveSlackSeconds = 2;
constexpr std::int64_t silenceFrames = 8192; // at a time
constexpr auto progressInterval = std::chrono::milliseconds(50);

/// A thread's name has 15 characters: the product's is left out.
void nameThisThread(std::string_view label) {
    label.remove_prefix(label.find('.') + 1);
    pthread_setname_np(pthread_self(), std::string(label).c_str());
}

/// Runs a step; what goes wrong in it is a proxy's failure with this sentence, and the cause is kept inside.
template <typename Step>
auto orFail(const char* sentence, const Step& step) {
    try {
        return step();
    } catch (const FlowtideError& error) {
        if (error.kind() == FlowtideError::Case::exportCancelled) throw;
        std::throw_with_nested(FlowtideError::proxyFailed(sentence));
    } catch (const std::system_error&) {
        std::throw_with_nested(FlowtideError::proxyFailed(sentence));
    } catch (const ProjectError&) {
        std::throw_with_nested(FlowtideError::proxyFailed(sentence));
    }
}

/// What one proxy is made of, and the two jobs that make it.
class ProxyRender {
public:
    ProxyRender(const MediaBackend& backend, const ProxyPlan& plan, OutputFile& file, CancelCheck isCancelled)
        : backend_(backend)
        , plan_(plan)
        , isCancelled_(std::move(isCancelled))
        , gate_(interleaveSlackSeconds, plan.audio.has_value()) {
        video_ = orFail("Cannot read source video for proxy", [&] {
            return backend_.openVideo(plan_.source, plan_.video.layout, {0, plan_.source.duration}, isCancelled_);
        });
        writer_ = orFail("Cannot write proxy video", [&] {
            auto writer = backend_.createMovie(file, FileType::quickTimeMovie, plan_.metadata);
            writer->addVideo(plan_.video);
            if (plan_.audio) writer->addAudio(*plan_.audio);
            writer->start();
            return writer;
        });
    }

    void run(const ProgressHandler& onProgress) {
        {
            std::future<void> video;
            std::future<void> audio;
            try {
                video = started(Track::video, videoLabel, [this] { writeVideo(); });
                if (plan_.audio) audio = started(Track::audio, audioLabel, [this] { writeAudio(); });
                for (const std::future<void>* worker : {&video, &audio})
                    while (worker->valid() && worker->wait_for(progressInterval) != std::future_status::ready) {
                        if (isCancelled_()) gate_.release();
                        if (onProgress) onProgress(videoFraction_);
                    }
            } catch (...) {
                fail(); // or one worker would wait for the other for ever, and we for it
            }
        }
        throwIfCancelled(isCancelled_);
        state_.rethrowError();
        orFail("Proxy writer failed", [&] { writer_->finish(); });
    }

    /// What the source's damage cost.
    int concealedFrames() const { return video_->concealedFrameCount(); }
    int damagedStretches() const { return damagedStretches_; }

private:
    using Track = InterleaveGate::Track;

    /// Records the exception that is being handled and lets both workers through to notice it.
    void fail() {
        state_.recordError(std::current_exception());
        gate_.release();
    }

    template <typename Job>
    std::future<void> started(Track track, const char* label, const Job& job) {
        return std::async(std::launch::async, [this, track, label, job] {
            nameThisThread(label);
            try {
                job();
            } catch (...) {
                fail();
            }
            gate_.finish(track);
        });
    }

    bool shouldStop() const { return isCancelled_() || state_.hasError(); }

    std::int64_t ticksAt(double seconds) const {
        const MediaTime base = *plan_.video.timeBase;
        return std::llround(seconds * static_cast<double>(base.denominator) / static_cast<double>(base.numerator));
    }

    /// How long the last frame is shown, in ticks: until the source's track ends, or as long as the one before it.
    std::int64_t lastLength(std::int64_t start, std::int64_t lengthBefore) const {
        const std::int64_t end = ticksAt(plan_.source.video.end.value_or(0));
        if (end > start) return end - start;
        return lengthBefore > 0 ? lengthBefore
                                : std::max<std::int64_t>(ticksAt(plan_.video.frameDuration.seconds()), 1);
    }

    void append(const VideoFrame& frame, std::int64_t start, std::int64_t length) {
        orFail("Proxy encode failed", [&] { writer_->appendVideo(frame, start, length); });
        const double end = static_cast<double>(start + length) * plan_.video.timeBase->seconds();
        videoFraction_ = std::clamp(end / plan_.source.duration, 0.0, 1.0);
        gate_.advance(Track::video, end);
    }

    void writeVideo() {
        const auto next = [&] { return orFail("Proxy decode failed", [&] { return video_->next(); }); };
        auto held = next();
        if (!held) throw FlowtideError::proxyFailed("Proxy decode failed");
        std::int64_t start = ticksAt(held->time.value);
        std::int64_t length = 0;
        while (auto following = next()) {
            if (shouldStop()) return;
            const std::int64_t followingStart = ticksAt(following->time.value);
            // Of frames that claim one time only one is ever seen.
            if (followingStart <= start) continue;
            length = followingStart - start;
            append(held->frame, start, length);
            held = std::move(following);
            start = followingStart;
        }
        if (shouldStop()) return;
        append(held->frame, start, lastLength(start, length));
        orFail("Proxy encode failed", [&] { writer_->finishVideo(); });
    }

    void writeAudio() {
        const double rate = plan_.audio->sampleRate;
        const auto channels = static_cast<std::size_t>(plan_.audio->channels);
        const auto reader = orFail("Proxy reader failed", [&] {
            return backend_.openAudio(plan_.source, {0, plan_.source.duration}, isCancelled_);
        });
        const auto append = [&](std::span<const float> samples) {
            orFail("Proxy encode failed", [&] { writer_->appendAudio(samples); });
            framesWritten_ += static_cast<std::int64_t>(samples.size() / channels);
            gate_.advance(Track::audio, static_cast<double>(framesWritten_) / rate);
        };
        const std::vector<float> silence(static_cast<std::size_t>(silenceFrames) * channels);
        const std::int64_t end = std::llround(plan_.source.duration * rate);
        while (const auto block = orFail("Proxy reader failed", [&] { return reader->next(); })) {
            const auto blockFrames = static_cast<std::int64_t>(block->samples.size() / channels);
            const std::int64_t blockStart = std::llround(block->time.value * rate);
            // What was delivered already by an overlapping block is dropped, what is missing is silent.
            const std::int64_t from = std::max(blockStart, framesWritten_);
            const std::int64_t to = std::min(blockStart + blockFrames, end);
            if (from >= to) continue;
            while (framesWritten_ < from) {
                if (shouldStop()) return;
                const auto count = static_cast<std::size_t>(std::min(from - framesWritten_, silenceFrames));
                append(std::span(silence).first(count * channels));
            }
            if (shouldStop()) return;
            append(std::span(block->samples)
                       .subspan(static_cast<std::size_t>(from - blockStart) * channels,
                                static_cast<std::size_t>(to - from) * channels));
        }
        damagedStretches_ = reader->damagedStretchCount();
        orFail("Proxy encode failed", [&] { writer_->finishAudio(); });
    }

    const MediaBackend& backend_;
    const ProxyPlan& plan_;
    const CancelCheck isCancelled_;
    InterleaveGate gate_;
    RenderState state_;
    std::unique_ptr<VideoReader> video_;
    std::unique_ptr<MovieWriter> writer_;
    std::atomic<double> videoFraction_ = 0;
    std::int64_t framesWritten_ = 0; ///< of sound, for the sound's worker alone
    int damagedStretches_ = 0;       ///< the same
};

} // namespace

ProxyEngine::ProxyEngine(const MediaBackend& backend, TemporaryItems& items, LogSink warn, CancelCheck isCancelled)
    : backend_(backend)
    , items_(items)
    , warn_(std::move(warn))
    , cancelCheck_(std::move(isCancelled)) {}

void ProxyEngine::tellOfDamage(int frames, int stretches) const {
    if (!warn_) return;
    if (frames > 0)
        warn_(fmt::format("{} {} decoded approximately.", frames,
                          frames == 1 ? "damaged source frame was" : "damaged source frames were"));
    if (stretches > 0)
        warn_(fmt::format("{} {} replaced by silence.", stretches,
                          stretches == 1 ? "damaged stretch of the source's sound was"
                                         : "damaged stretches of the source's sound were"));
}

std::filesystem::path ProxyEngine::makeProxy(const ImportedClip& clip, const ProgressHandler& onProgress) {
    if (clip.encodedWidth() < 1 || clip.encodedHeight() < 1)
        throw FlowtideError::proxyFailed("Source has no video track");
    const ProxyPlan plan = planProxy(clip);
    const auto file = orFail("Proxy writer failed",
                             [&] { return std::make_unique<TemporaryFile>(items_, TemporaryItems::Kind::proxy); });
    ProxyRender render(backend_, plan, *file, [this] { return isCancelled_ || (cancelCheck_ && cancelCheck_()); });
    render.run(onProgress);
    if (file->size() == 0) throw FlowtideError::proxyFailed("Proxy render produced a zero-byte file");
    tellOfDamage(render.concealedFrames(), render.damagedStretches());
    file->keep();
    return file->path();
}

} // namespace flowtide
