// Keeps the open clip's project on the disk.
#pragma once

#include "editor/edit_session.h"
#include "editor/error_alert.h"
#include "editor/jobs/session_jobs.h"
#include "project/project_store.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace flowtide {

/// Saves by itself, shortly after every edit, off the main thread. Several windows, and programs, can have one project
/// open: whoever finds that another one has saved it since goes on with a copy under an id of its own, so that nobody's
/// edits are overwritten. Main thread only.
class ProjectBinding {
public:
    static constexpr double saveDelay = 0.35; ///< seconds from the first edit that is not saved yet

    /// What is stored of a project, as the queue of projects knows it.
    struct Stored {
        Uuid id;
        std::optional<ReferenceDate> savedAt;
        bool is(const FlowtideProject& project) const { return project.id == id && project.savedAt == savedAt; }
    };

    /// `store` is used in the queue of projects alone.
    ProjectBinding(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, ErrorAlert& alert,
                   std::shared_ptr<ProjectStore> store);

    const RecentProjects& recentProjects() const { return recentProjects_.get(); }
    const std::string& projectSaveMessage() const { return projectSaveMessage_.get(); }
    /// The open project's.
    const Uuid& projectID() const { return projectID_; }
    const std::shared_ptr<ProjectStore>& store() const { return store_; }
    /// Of the open project, the same object for as long as it is open; null while none is. Its content belongs to the
    /// queue of projects.
    const std::shared_ptr<Stored>& stored() const { return stored_; }

    /// The open clip is `source` from now on. `stored`: when the project was last saved, for one that was loaded.
    void bind(const Uuid& id, ClipReference source, std::optional<ReferenceDate> stored);
    /// The open project goes on, with a clip that was opened anew.
    void rebind(ClipReference source) { source_ = std::move(source); }
    /// No clip is open.
    void unbind();

    FlowtideProject projectSnapshot() const;
    void scheduleProjectSave();
    /// Begins to save at once; the first save of a project shows an alert when it fails.
    void saveProjectNow();
    /// Begins to save what waits to be saved, or could not be.
    void saveProjectIfPending() {
        if (isSavePending_ || hasFailedToSave_) saveProjectNow();
    }
    /// Writes the project to a file that the user chose.
    void saveProjectCopy(const std::filesystem::path& file);
    void loadRecentProjects();
    /// The project's file stays.
    void removeFromRecent(const Uuid& id);

private:
    struct Saved {
        Uuid id;
        bool isCopy = false; ///< another window or program has changed the project
        RecentProjects recent;
    };
    static Saved save(ProjectStore& store, FlowtideProject project, Stored& stored);
    void finishSave(Outcome<Saved>& outcome, const std::shared_ptr<Stored>& stored, bool isFirst);

    EditSession& session_;
    SessionJobs& jobs_;
    ErrorAlert& alert_;
    std::shared_ptr<ProjectStore> store_;
    Observed<RecentProjects> recentProjects_;
    Observed<std::string> projectSaveMessage_;
    Uuid projectID_;
    ClipReference source_;
    std::shared_ptr<Stored> stored_;
    bool isFirstSave_ = false;
    bool isSavePending_ = false;
    bool hasFailedToSave_ = false; ///< the last time: what it would have stored is in memory alone
    Timer projectSaveTask_;
};

} // namespace flowtide
