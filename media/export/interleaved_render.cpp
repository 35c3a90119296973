// The two workers of a render.
#include "media/export/interleaved_render.h"

#include "media/export/frame_queue.h"
#include "media/export/interleave_gate.h"
#include "media/export/render_state.h"
#include "media/flowtide_error.h"
#include "media/frames/crop_zoom_renderer.h"
#include "media/frames/held_frames.h"
#include "media/sound/audio_retimer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace flowtide {

namespace {

constexpr std::int64_t audioChunkFrames = 8192;
constexpr double audioFractionBeforeFinish = 0.98;
constexpr double interleaveSlackSeconds = 2; // of output: a few megabytes of packets at most
constexpr std::size_t framesAhead = 4;
constexpr auto progressInterval = std::chrono::milliseconds(50);

/// Lets the producer go when the consumer leaves, for whatever reason.
struct StopAtExit {
    FrameQueue& queue;
    ~StopAtExit() { queue.stop(); }
};

/// Counts the workers that are still running and wakes the waiting thread.
class WorkerGroup {
public:
    explicit WorkerGroup(int workers)
        : running_(workers) {}
    void leave() {
        const std::scoped_lock guard(lock_);
        --running_;
        changed_.notify_all();
    }
    /// Waits at most `interval`; true when every worker has left.
    bool waitFor(std::chrono::milliseconds interval) {
        std::unique_lock guard(lock_);
        return changed_.wait_for(guard, interval, [&] { return running_ == 0; });
    }

private:
    std::mutex lock_; ///< guards running_
    std::condition_variable changed_;
    int running_;
};

/// One render's shared parts and the two jobs that run on them.
class InterleavedRender {
public:
    InterleavedRender(const RenderInputs& inputs, const std::function<bool()>& isCancelled)
        : inputs_(inputs)
        , isCancelled_(isCancelled)
        , gate_(interleaveSlackSeconds, inputs.audio != nullptr)
        , group_(inputs.audio ? 2 : 1) {}

    void run(const ProgressHandler& onProgress) {
        const bool hasAudio = inputs_.audio != nullptr;
        {
            const std::jthread videoWorker([&] { work(Track::video, [&] { writeVideo(); }); });
            std::jthread audioWorker;
            if (hasAudio) audioWorker = std::jthread([&] { work(Track::audio, [&] { writeAudio(); }); });
            while (!group_.waitFor(progressInterval)) {
                if (isCancelled_()) gate_.release();
                onProgress(state_.progress(hasAudio));
            }
        }
        if (isCancelled_()) throw FlowtideError::exportCancelled();
        state_.rethrowError();
        if (state_.framesWritten() == 0) throw FlowtideError::writerFailed("No video frames were written");
        onProgress(state_.progress(hasAudio));
    }

    std::int64_t framesWritten() const { return state_.framesWritten(); }

private:
    using Track = InterleaveGate::Track;

    /// Runs a worker's job; a failure is recorded and lets the other worker through to notice it.
    template <typename Job>
    void work(Track track, const Job& job) {
        try {
            job();
        } catch (...) {
            state_.recordError(std::current_exception());
            gate_.release();
        }
        gate_.finish(track);
        group_.leave();
    }

    bool shouldStop() const { return isCancelled_() || state_.hasError(); }

    VideoFrame frameAt(const HeldFrames& held, SourceSeconds time) {
        const TimedFrame& previous = *held.previous();
        const auto& next = held.next();
        if (inputs_.renderer && next && previous.time < time && time < next->time &&
            OpticalFlowScope::contains(inputs_.plan.opticalFlowRanges, time))
            return inputs_.renderer->render({previous, *next, held.before(), held.after()}, time);
        return previous.frame;
    }

    /// Decodes, makes in-between frames, crops and zooms, a few frames ahead of the encoder.
    void renderFrames(FrameQueue& queue) {
        const ExportPlan& plan = inputs_.plan;
        HeldFrames held(inputs_.video, inputs_.renderer ? HeldFrames::Context::kept : HeldFrames::Context::none);
        CropZoomRenderer framing(plan.framing);
        std::size_t cursor = 0;
        for (std::int64_t i = 0; i < plan.frameCount; ++i) {
            if (shouldStop()) return;
            const OutputSeconds outputTime{plan.video.frameDuration.secondsTimes(i)};
            const SourceSeconds sourceTime = plan.timeMap.sourceTime(outputTime, cursor);
            held.advanceTo(sourceTime);
            if (!held.previous()) return;
            if (!queue.push(framing.render(frameAt(held, sourceTime), sourceTime, i))) return;
        }
    }

    void writeVideo() {
        const ExportPlan& plan = inputs_.plan;
        FrameQueue queue(framesAhead);
        const std::jthread producer([&] {
            try {
                renderFrames(queue);
            } catch (...) {
                state_.recordError(std::current_exception());
                gate_.release();
            }
            queue.close();
        });
        const StopAtExit stopAtExit{queue};
        std::int64_t written = 0;
        while (const auto frame = queue.pop()) {
            if (shouldStop()) return;
            inputs_.writer.appendVideo(*frame, written++);
            state_.setFramesWritten(written, plan.frameCount);
            gate_.advance(Track::video, plan.video.frameDuration.secondsTimes(written));
        }
        if (written > 0 && !shouldStop()) inputs_.writer.finishVideo();
    }

    void writeAudio() {
        AudioRetimer retimer(*inputs_.audio, inputs_.plan.timeMap);
        const std::int64_t total = retimer.totalFrames();
        const auto channels = static_cast<std::size_t>(inputs_.audio->channels);
        std::vector<float> chunk;
        for (std::int64_t first = 0; first < total; first += audioChunkFrames) {
            if (shouldStop()) return;
            const std::int64_t count = std::min(audioChunkFrames, total - first);
            chunk.resize(static_cast<std::size_t>(count) * channels);
            retimer.render(first, chunk);
            inputs_.writer.appendAudio(chunk);
            const std::int64_t done = first + count;
            state_.setAudioFraction(
                std::min(static_cast<double>(done) / static_cast<double>(total), audioFractionBeforeFinish));
            gate_.advance(Track::audio, static_cast<double>(done) / inputs_.audio->sampleRate);
        }
        inputs_.writer.finishAudio();
        state_.setAudioFraction(1);
    }

    const RenderInputs inputs_;
    const std::function<bool()>& isCancelled_;
    RenderState state_;
    InterleaveGate gate_;
    WorkerGroup group_;
};

} // namespace

void renderInterleaved(const RenderInputs& inputs, const LogSink& log, const ProgressHandler& onProgress,
                       const std::function<bool()>& isCancelled) {
    log(fmt::format("[Export] Rendering {} video frames at source frame rate...", inputs.plan.frameCount));
    InterleavedRender render(inputs, isCancelled);
    render.run(onProgress);
    log(fmt::format("[Export] Video done: {} frames, audio done: {}", render.framesWritten(),
                    inputs.audio ? "yes" : "no audio"));
}

} // namespace flowtide
