// An editor session on a virtual clock, with media that does what a test says.
#pragma once

#include "editor/flowtide_view_model.h"
#include "project/clip_fingerprint.h"
#include "tests/support/scripted_player.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/virtual_scheduler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace flowtide::test {

/// Plays a script. Clips are 10 s of 1920 × 1080 at 30 fps.
class ScriptedSessionMedia final : public SessionMedia {
public:
    ImportedClip loadClip(const std::filesystem::path& path) override {
        if (failure) throw FlowtideError::readerFailed(*failure);
        ImportedClip clip;
        clip.url = path;
        clip.duration = duration;
        clip.frameRate = 30;
        clip.frameDuration = {1, 30};
        clip.width = 1920;
        clip.height = 1080;
        clip.video.encodedWidth = 1920;
        clip.video.encodedHeight = 1080;
        if (hasSound) clip.audio.emplace();
        return clip;
    }
    std::string fingerprint(const std::filesystem::path& path) override { return clipFingerprint(path); }
    ExportValidationReport exportClip(const ExportRequest& request, const std::function<void(double)>& onProgress,
                                      const CancelCheck& isCancelled) override {
        exported = request;
        if (whileExporting)
            whileExporting(onProgress);
        else
            onProgress(0.25);
        throwIfCancelled(isCancelled);
        if (failure) throw FlowtideError::writerFailed(*failure);
        return {"summary", "details"};
    }
    std::filesystem::path makeProxy(const ImportedClip&, const std::function<void(double)>& onProgress,
                                    const CancelCheck& isCancelled) override {
        onProgress(0.5);
        throwIfCancelled(isCancelled);
        ++uncancelled;
        if (failure) throw FlowtideError::proxyFailed(*failure);
        return "proxy.mov";
    }
    std::filesystem::path renderPreview(const Uuid& id, ExportRequest request,
                                        const std::function<void(double)>& onProgress,
                                        const CancelCheck& isCancelled) override {
        rendered.push_back(std::move(request));
        onProgress(0.5);
        throwIfCancelled(isCancelled);
        ++uncancelled;
        if (failure) throw FlowtideError::writerFailed(*failure);
        return *previewFiles.insert(id.text() + ".mov").first;
    }
    void removePreview(const std::filesystem::path& file) noexcept override { previewFiles.erase(file); }
    AudioData loadSound(const ImportedClip&, const CancelCheck& isCancelled) override {
        throwIfCancelled(isCancelled);
        ++uncancelled;
        if (soundFailure) throw FlowtideError::readerFailed(*soundFailure);
        return {{0.5F, 0.5F}, 48'000, 1, 0, 0};
    }
    SourceFrame sourceFrame(const std::shared_ptr<const ImportedClip>&, SourceSeconds time, OutputSize size) override {
        framesAskedFor.push_back(time.value);
        sizeAskedFor = size;
        if (failure) throw FlowtideError::readerFailed(*failure);
        return {{}, {std::floor(time.value * 30 + 1e-6) / 30}};
    }
    ExportPicture exportPicture(const ExportRequest& request, OutputSeconds time, OutputSize size,
                                const CancelCheck& isCancelled) override {
        pictured.emplace_back(request, time.value);
        sizeAskedFor = size;
        throwIfCancelled(isCancelled);
        ++uncancelled;
        if (failure) throw FlowtideError::readerFailed(*failure);
        return {{}, time, {}, isInBetween};
    }
    SubjectTrackResult track(const ImportedClip&, SourceSeconds time, const SubjectBox&, SourceRange,
                             const std::function<void(TrackingProgress)>& onProgress,
                             const CancelCheck& isCancelled) override {
        trackedFrom = time.value;
        onProgress({0.4, true, {}, {}});
        if (whileTracking) whileTracking(onProgress);
        throwIfCancelled(isCancelled);
        ++uncancelled;
        if (failure) throw FlowtideError::readerFailed(*failure);
        return tracked;
    }

    double duration = 10;
    bool hasSound = false;
    std::optional<std::string> soundFailure;
    std::vector<double> framesAskedFor;                     ///< source seconds
    std::vector<std::pair<ExportRequest, double>> pictured; ///< and at which output seconds
    OutputSize sizeAskedFor{};                              ///< of the last frame
    int uncancelled = 0;                                    ///< operations that were still wanted at their end
    bool isInBetween = true;
    std::optional<std::string> failure; ///< of every operation
    SubjectTrackResult tracked;
    double trackedFrom = 0; ///< source seconds
    std::optional<ExportRequest> exported;
    std::vector<ExportRequest> rendered; ///< previews
    std::set<std::filesystem::path> previewFiles;
    std::function<void(const std::function<void(double)>&)> whileExporting;
    std::function<void(const std::function<void(TrackingProgress)>&)> whileTracking;
};

class SessionStage : public testing::Test {
protected:
    SessionStage() { makeModel(); }

    /// Another session on the same store, as after a restart; the one before ends.
    void makeModel() {
        model.reset();
        scheduler.settle();
        model = newModel();
    }
    std::unique_ptr<FlowtideViewModel> newModel() {
        return std::make_unique<FlowtideViewModel>(SessionEnvironment{
            scheduler, player, media, std::make_shared<ProjectStore>(folder / "state"), [this] { return smoothMotion; },
            "Ctrl+Z", [this](std::string_view line) { logged.emplace_back(line); }});
    }
    /// A file that can be opened as a clip.
    std::filesystem::path clipFile(const std::string& name) {
        writeFile(folder.path() / name, name);
        return folder.path() / name;
    }
    /// Opens a clip and lets it settle.
    void open(const std::string& name = "clip.mov") {
        model->importClip(clipFile(name));
        scheduler.settle();
        ASSERT_TRUE(model->clip());
    }
    /// Time enough for every save.
    void rest() {
        scheduler.advance(1);
        scheduler.settle();
    }
    /// How often the player is given something else to play once the user rests.
    std::size_t rebuilds() {
        const std::size_t before = player.items.size();
        scheduler.advance(1);
        return player.items.size() - before;
    }
    FlowtideProject storedProject() const {
        return ProjectStore::load(ProjectStore(folder / "state").projectFile(model->binding().projectID()));
    }
    static SpeedKeyframe point(double time, double speed) {
        return {Uuid::random(), time, speed, SpeedKeyframeRole::curve};
    }
    /// A curve that is slow (a tenth) from `start` to `end`.
    static SpeedKeyframes slowBetween(double start, double end) {
        return {point(0, 1),     point(start - 0.1, 1), point(start, 0.1),
                point(end, 0.1), point(end + 0.1, 1),   point(10, 1)};
    }

    TemporaryFolder folder;
    VirtualScheduler scheduler;
    ScriptedPlayer player{scheduler};
    std::shared_ptr<ScriptedSessionMedia> media = std::make_shared<ScriptedSessionMedia>();
    double smoothMotion = 30;
    std::vector<std::string> logged;
    std::unique_ptr<FlowtideViewModel> model;
};

} // namespace flowtide::test
