// Autosave.
#include "editor/project/project_binding.h"

#include "media/failure_sentence.h"
#include "project/files/atomic_file.h"
#include "project/files/local_file_safety.h"
#include "project/project_json.h"
#include "project/project_validation.h"

#include <utility>

namespace flowtide {

ProjectBinding::ProjectBinding(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, ErrorAlert& alert,
                               std::shared_ptr<ProjectStore> store)
    : session_(session)
    , jobs_(jobs)
    , alert_(alert)
    , store_(std::move(store))
    , recentProjects_(notifier, Property::recentProjects)
    , projectSaveMessage_(notifier, Property::projectSaveMessage) {}

void ProjectBinding::bind(const Uuid& id, ClipReference source, std::optional<ReferenceDate> stored) {
    projectSaveTask_.cancel();
    isSavePending_ = false;
    hasFailedToSave_ = false;
    isFirstSave_ = !stored;
    projectID_ = id;
    source_ = std::move(source);
    stored_ = std::make_shared<Stored>(Stored{id, stored});
    projectSaveMessage_.set({});
}

void ProjectBinding::unbind() {
    projectSaveTask_.cancel();
    isSavePending_ = false;
    hasFailedToSave_ = false;
    stored_.reset();
    projectSaveMessage_.set({});
}

FlowtideProject ProjectBinding::projectSnapshot() const {
    FlowtideProject project;
    project.id = projectID_;
    project.savedAt = jobs_.scheduler().date();
    project.source = source_;
    project.edits = session_.projectEdits();
    return project;
}

void ProjectBinding::scheduleProjectSave() {
    if (!stored_) return;
    projectSaveMessage_.set("Saving…");
    // Counted from the first edit, so that a drag which goes on and on is saved as well.
    if (isSavePending_) return;
    isSavePending_ = true;
    Scheduler& scheduler = jobs_.scheduler();
    projectSaveTask_ = Timer(scheduler, scheduler.after(saveDelay, [this] { saveProjectNow(); }));
}

void ProjectBinding::saveProjectNow() {
    if (!stored_) return;
    projectSaveTask_.cancel();
    isSavePending_ = false;
    projectSaveMessage_.set("Saving…");
    jobs_.start(
        BackgroundQueue::projects,
        [store = store_, project = projectSnapshot(), stored = stored_] { return save(*store, project, *stored); },
        [this, stored = stored_, isFirst = std::exchange(isFirstSave_, false)](Outcome<Saved>& outcome) {
            finishSave(outcome, stored, isFirst);
        });
}

ProjectBinding::Saved ProjectBinding::save(ProjectStore& store, FlowtideProject project, Stored& stored) {
    Saved saved;
    project.id = stored.id; // that of the copy, once there is one
    try {
        if (!store.saveUnlessChanged(project, stored.savedAt)) {
            project.id = Uuid::random();
            store.save(project);
            saved.isCopy = true;
        }
    } catch (...) {
        // When only the list has failed the file is there, and must not be taken for somebody else's.
        if (store.savedDate(project.id) == project.savedAt) stored = {project.id, project.savedAt};
        throw;
    }
    stored = {project.id, project.savedAt};
    saved.id = project.id;
    saved.recent = store.recent();
    return saved;
}

void ProjectBinding::finishSave(Outcome<Saved>& outcome, const std::shared_ptr<Stored>& stored, bool isFirst) {
    const bool isOpen = stored == stored_;
    try {
        Saved& saved = outcome.get();
        recentProjects_.set(std::move(saved.recent));
        if (!isOpen) return;
        hasFailedToSave_ = false;
        projectID_ = saved.id;
        if (isSavePending_) return; // "Saving…" stands for what was edited meanwhile
        projectSaveMessage_.set(saved.isCopy ? "Saved as a copy: this project was changed elsewhere." : "Saved");
    } catch (const std::exception& error) {
        if (isOpen && !isSavePending_) projectSaveMessage_.set("Could not save: " + sentenceFor(error));
        // Nothing else would tell of a project that is closed, or has never been stored; once is enough of that one.
        if ((isFirst && !hasFailedToSave_) || !isOpen) alert_.show("Could not save your project", sentenceFor(error));
        if (!isOpen) return;
        hasFailedToSave_ = true;
        isFirstSave_ = isFirstSave_ || isFirst;
    }
}

void ProjectBinding::saveProjectCopy(const std::filesystem::path& file) {
    if (!stored_) return;
    jobs_.start(
        BackgroundQueue::projects,
        [project = projectSnapshot(), file] {
            if (const auto clip = project.source.url.filePath()) LocalFileSafety::requireDistinct(*clip, file);
            // The user's own file in a folder of their choice, unlike the projects in the state directory.
            writeAtomically(systemFileOperations(), file, encodeProject(project), HiddenFile::Access::destination);
            return Nothing{};
        },
        [this](Outcome<Nothing>& outcome) {
            try {
                outcome.get();
            } catch (const std::exception& error) {
                alert_.show("Could not save your project", sentenceFor(error));
            }
        });
}

void ProjectBinding::loadRecentProjects() {
    jobs_.start(
        BackgroundQueue::projects, [store = store_] { return store->recent(); },
        [this](Outcome<RecentProjects>& recent) { recentProjects_.set(recent.get()); });
}

void ProjectBinding::removeFromRecent(const Uuid& id) {
    jobs_.start(
        BackgroundQueue::projects,
        [store = store_, id] {
            store->removeFromRecent(id);
            return store->recent();
        },
        [this](Outcome<RecentProjects>& recent) {
            try {
                recentProjects_.set(recent.get());
            } catch (const std::exception& error) {
                alert_.show("Could not change the list of projects", sentenceFor(error));
            }
        });
}

} // namespace flowtide
