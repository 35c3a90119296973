// The workers of a render: one makes frames, one encodes them, one retimes and encodes the sound.
#include "media/export/interleaved_render.h"

#include "media/export/frame_queue.h"
#include "media/export/interleave_gate.h"
#include "media/export/output_frames.h"
#include "media/export/render_state.h"
#include "media/flowtide_error.h"
#include "media/sound/audio_retimer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
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

/// One render's shared parts and the jobs that run on them.
class InterleavedRender {
public:
    InterleavedRender(const RenderInputs& inputs, const std::function<bool()>& isCancelled, const ThreadStarter& start)
        : inputs_(inputs)
        , isCancelled_(isCancelled)
        , start_(start)
        , gate_(interleaveSlackSeconds, inputs.audio != nullptr)
        , group_(inputs.audio ? 2 : 1) {}

    void run(const ProgressHandler& onProgress) {
        const bool hasAudio = inputs_.audio != nullptr;
        {
            std::jthread videoWorker;
            std::jthread audioWorker;
            try {
                videoWorker = started([&] { work(Track::video, [&] { writeVideo(); }); });
                if (hasAudio) audioWorker = started([&] { work(Track::audio, [&] { writeAudio(); }); });
                while (!group_.waitFor(progressInterval))
                    onProgress(state_.progress(hasAudio));
            } catch (...) {
                fail(); // or a worker would wait for the other track for ever, and we for the worker
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

    std::jthread started(std::function<void()> body) const {
        try {
            return start_(std::move(body));
        } catch (const std::system_error& error) {
            throw FlowtideError::writerFailed(fmt::format("Could not start a thread for the export: {} (error {})",
                                                          error.code().message(), error.code().value()));
        }
    }

    /// Records the exception that is being handled and lets every worker through to notice it.
    void fail() {
        state_.recordError(std::current_exception());
        gate_.release();
    }

    template <typename Job>
    void work(Track track, const Job& job) {
        try {
            job();
        } catch (...) {
            fail();
        }
        gate_.finish(track);
        group_.leave();
    }

    bool shouldStop() const { return isCancelled_() || state_.hasError(); }

    /// Makes the output's frames, a few ahead of the encoder.
    void produceFrames(FrameQueue& queue) {
        try {
            OutputFrames frames(inputs_.plan, inputs_.video, inputs_.renderer);
            while (!shouldStop()) {
                auto frame = frames.next();
                if (!frame || !queue.push(std::move(*frame))) break;
            }
        } catch (...) {
            fail();
        }
        queue.close();
    }

    void writeVideo() {
        const ExportPlan& plan = inputs_.plan;
        FrameQueue queue(framesAhead);
        const std::jthread producer = started([&] { produceFrames(queue); });
        const StopAtExit stopAtExit{queue};
        std::int64_t written = 0;
        while (const auto frame = queue.pop()) {
            if (shouldStop()) return;
            inputs_.writer.appendVideo(*frame, written++, 1);
            state_.setFramesWritten(written, plan.frameCount);
            gate_.advance(Track::video, plan.video.frameDuration.secondsTimes(written));
        }
        if (written == 0 || shouldStop()) return;
        inputs_.writer.finishVideo();
        state_.setVideoFinished();
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
    const ThreadStarter& start_;
    RenderState state_;
    InterleaveGate gate_;
    WorkerGroup group_;
};

} // namespace

void renderInterleaved(const RenderInputs& inputs, const LogSink& log, const ProgressHandler& onProgress,
                       const std::function<bool()>& isCancelled, const ThreadStarter& start) {
    log(fmt::format("[Export] Rendering {} video frames at source frame rate...", inputs.plan.frameCount));
    InterleavedRender render(inputs, isCancelled, start);
    render.run(onProgress);
    log(fmt::format("[Export] Video done: {} frames, audio done: {}", render.framesWritten(),
                    inputs.audio ? "yes" : "no audio"));
}

} // namespace flowtide
