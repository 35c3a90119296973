#include "ui/panes/project_summaries.h"

#include "core/curve_engine.h"
#include "project/files/project_error.h"
#include "project/project_store.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace flowtide {

namespace {

constexpr std::int64_t tallestPicture = 4096;

std::vector<double> sampledSpeeds(const ProjectEdits& edits, double duration) {
    const double end = edits.trimEnd > edits.trimStart ? edits.trimEnd : duration;
    std::vector<double> speeds;
    speeds.reserve(ProjectSummaries::speedCount);
    for (int index = 0; index < ProjectSummaries::speedCount; ++index) {
        const double share = double(index) / (ProjectSummaries::speedCount - 1);
        speeds.push_back(CurveEngine::value(edits.trimStart + share * (end - edits.trimStart), edits.keyframes,
                                            edits.smoothing, CurveEngine::speedLimits));
    }
    return speeds;
}

ProjectSummary loadSummary(const RecentProject& recent) {
    ProjectSummary summary;
    summary.isKnown = true;
    summary.isMissing = true;
    const auto file = recent.projectURL.filePath();
    if (!file) return summary;
    try {
        const FlowtideProject project = ProjectStore::load(*file);
        summary.speeds = sampledSpeeds(project.edits, project.source.duration);
        summary.pictureSeconds = project.edits.playhead * project.source.duration;
        if (const auto clip = project.source.url.filePath()) {
            std::error_code ignored;
            summary.clip = *clip;
            summary.isMissing = !std::filesystem::exists(*clip, ignored);
        }
    } catch (const ProjectError&) {
        // Opening it says what is wrong; here it is as good as a clip that is gone.
    }
    return summary;
}

} // namespace

ProjectSummaries::ProjectSummaries(Scheduler& scheduler, PictureLoader& pictures, int pictureWidth)
    : pictures_(pictures)
    , pictureWidth_(pictureWidth)
    , jobs_(scheduler) {}

const ProjectSummary& ProjectSummaries::summary(const RecentProject& project) {
    const std::string id = project.id.text();
    const auto [found, isNew] = entries_.try_emplace(id);
    Entry& entry = found->second;
    if (isNew || entry.savedAt != project.savedAt) {
        entry.savedAt = project.savedAt;
        jobs_.start(
            BackgroundQueue::projects, [project] { return loadSummary(project); },
            [this, id](Outcome<ProjectSummary>& outcome) { receive(id, std::move(outcome.get())); });
    }
    return entry.summary;
}

void ProjectSummaries::receive(const std::string& id, ProjectSummary summary) {
    Entry& entry = entries_[id];
    const bool isSameClip =
        entry.summary.isKnown && entry.summary.clip == summary.clip && entry.summary.isMissing == summary.isMissing;
    if (isSameClip) summary.picture = entry.summary.picture;
    entry.summary = std::move(summary);
    if (!isSameClip && !entry.summary.isMissing)
        entry.wanted = pictures_.load(entry.summary.clip, entry.summary.pictureSeconds,
                                      OutputSize{pictureWidth_, tallestPicture}, [this, id](const QImage& picture) {
                                          entries_[id].summary.picture = picture;
                                          if (onChanged) onChanged();
                                      });
    if (onChanged) onChanged();
}

} // namespace flowtide
