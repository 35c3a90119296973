// What a step of a drag costs the main thread: a point moves, the trim boundaries, the automatic ranges and the history
// follow, and a view asks for the time map.
#include "bench/scratch_folder.h"
#include "editor/flowtide_view_model.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <deque>
#include <fstream>
#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace flowtide;

constexpr double clipSeconds = 600;
constexpr double goalMilliseconds = 4;

/// Runs everything where it is posted from; timers never.
class DirectScheduler final : public Scheduler {
public:
    double now() const override { return 0; }
    ReferenceDate date() const override { return {}; }
    void post(Task task) override { tasks_.push_back(std::move(task)); }
    void background(BackgroundQueue, Task task) override { tasks_.push_back(std::move(task)); }
    TaskID after(double, Task) override { return 1; }
    TaskID every(double, Task) override { return 1; }
    void cancel(TaskID) override {}
    void settle() {
        for (; !tasks_.empty(); tasks_.pop_front())
            tasks_.front()();
    }

private:
    std::deque<Task> tasks_;
};

class NoPlayer final : public SessionPlayer {
public:
    void setItem(std::shared_ptr<const PlaybackItem>) override {}
    void play(double) override {}
    double requestedRate() const override { return 0; }
    double rate() const override { return 0; }
    OutputSeconds currentTime() override { return {}; }
    void seek(OutputSeconds, SeekCompletion) override {}
    void setMuted(bool) override {}
    PlayerStatus status() const override { return PlayerStatus::unknown; }
    std::string failure() const override { return {}; }
};

class OneClip final : public SessionMedia {
public:
    ImportedClip loadClip(const std::filesystem::path& path) override {
        ImportedClip clip;
        clip.url = path;
        clip.duration = clipSeconds;
        clip.frameRate = 30;
        clip.width = 1920;
        clip.height = 1080;
        clip.video.encodedWidth = 1920;
        clip.video.encodedHeight = 1080;
        return clip;
    }
    std::string fingerprint(const std::filesystem::path&) override { return "one"; }
    ExportValidationReport exportClip(const ExportRequest&, const std::function<void(double)>&,
                                      const CancelCheck&) override {
        return {};
    }
    std::filesystem::path makeProxy(const ImportedClip&, const std::function<void(double)>&,
                                    const CancelCheck&) override {
        return {};
    }
    std::filesystem::path renderPreview(const Uuid&, ExportRequest, const std::function<void(double)>&,
                                        const CancelCheck&) override {
        return {};
    }
    void removePreview(const std::filesystem::path&) noexcept override {}
    AudioData loadSound(const ImportedClip&, const CancelCheck&) override { return {}; }
    SourceFrame sourceFrame(const std::shared_ptr<const ImportedClip>&, SourceSeconds, OutputSize) override {
        return {};
    }
    ExportPicture exportPicture(const ExportRequest&, OutputSeconds, OutputSize, const CancelCheck&) override {
        return {};
    }
    SubjectTrackResult track(const ImportedClip&, SourceSeconds, const SubjectBox&, SourceRange,
                             const std::function<void(TrackingProgress)>&, const CancelCheck&) override {
        return {};
    }
};

double millisecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Median over a drag of one point to and fro.
void measure(std::size_t pointCount, const bench::ScratchFolder& scratch) {
    DirectScheduler scheduler;
    NoPlayer player;
    FlowtideViewModel model({scheduler, player, std::make_shared<OneClip>(),
                             std::make_shared<ProjectStore>(scratch / ("state" + std::to_string(pointCount))),
                             [] { return 30.0; }});
    model.importClip(scratch / "clip.mov");
    scheduler.settle();
    SpeedKeyframes points;
    for (std::size_t i = 0; i < pointCount; ++i) {
        const double share = static_cast<double>(i) / static_cast<double>(pointCount - 1);
        points.push_back({Uuid::random(), share * clipSeconds, i % 7 < 3 ? 0.4 : 1.5, SpeedKeyframeRole::curve});
    }
    model.replaceKeyframes(points);
    model.beginCurveEdit();
    std::vector<double> steps, maps;
    for (int i = 0; i < 121; ++i) {
        points[pointCount / 2].speed = 1 + 0.005 * (i % 60);
        steps.push_back(millisecondsOf([&] { model.replaceKeyframes(points); }));
        maps.push_back(millisecondsOf([&] { static_cast<void>(model.curve().timeMap()); }));
        scheduler.settle();
    }
    const double end = millisecondsOf([&] { model.endCurveEdit(); });
    const auto median = [](std::vector<double>& values) {
        std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
        return values[values.size() / 2];
    };
    const double step = median(steps);
    const double map = median(maps);
    std::printf("%8zu %10.3f %10.3f %10.3f %10.3f %8.2f\n", pointCount, step, map, step + map, end,
                (step + map) / goalMilliseconds);
}

} // namespace

int main() {
    const bench::ScratchFolder scratch;
    std::ofstream(scratch / "clip.mov") << "clip";
    std::printf("a clip of %.0f s; milliseconds a step of a drag (goal %.0f)\n", clipSeconds, goalMilliseconds);
    std::printf("%8s %10s %10s %10s %10s %8s\n", "points", "edit", "time map", "together", "its end", "of goal");
    for (const std::size_t count : {10UL, 100UL, 1'000UL, 5'000UL, 19'999UL})
        measure(count, scratch);
}
