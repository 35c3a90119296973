// What lists show of recent projects: a picture, the speed curve, whether the clip is there.
#pragma once

#include "editor/jobs/session_jobs.h"
#include "project/recent_project.h"
#include "ui/picture_loader.h"

#include <QImage>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace flowtide {

struct ProjectSummary {
    bool isKnown = false;       ///< the project's file has been looked at
    bool isMissing = false;     ///< the clip is not where it was
    std::filesystem::path clip; ///< where it was last seen
    std::vector<double> speeds; ///< of the kept part, evenly spread over it; empty: unknown
    double pictureSeconds = 0;  ///< source seconds of the frame that stands for it
    QImage picture;             ///< null until it has come, or when there is none
};

/// Read from the disk in the background, when first asked for.
class ProjectSummaries final {
public:
    /// How many speeds a summary holds.
    static constexpr int speedCount = 227;

    /// All outlive it. Pictures are as wide as `pictureWidth`, device pixels.
    ProjectSummaries(Scheduler& scheduler, PictureLoader& pictures, int pictureWidth);

    /// What is known. A project that has been saved since is looked at again, its picture kept.
    const ProjectSummary& summary(const RecentProject& project);

    /// Called when more is known of one of them.
    std::function<void()> onChanged;

private:
    struct Entry {
        ProjectSummary summary;
        ReferenceDate savedAt;
        PictureLoader::Token wanted;
    };
    void receive(const std::string& id, ProjectSummary summary);

    PictureLoader& pictures_;
    int pictureWidth_;
    std::map<std::string, Entry> entries_; ///< by the projects' ids
    SessionJobs jobs_;
};

} // namespace flowtide
