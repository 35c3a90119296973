// The ways to an open clip.
#include "editor/project/clip_import.h"

#include "media/failure_sentence.h"
#include "project/files/project_error.h"
#include "project/project_validation.h"

#include <utility>

namespace flowtide {

namespace {

bool fits(const ProjectEdits& edits, const ImportedClip& clip) {
    try {
        validate(edits, clip.duration);
        return true;
    } catch (const ProjectError&) {
        return false;
    }
}

} // namespace

ClipImport::ClipImport(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, ErrorAlert& alert,
                       ProjectBinding& binding, std::shared_ptr<SessionMedia> media,
                       std::function<void()> onClipChanged)
    : session_(session)
    , jobs_(jobs)
    , alert_(alert)
    , binding_(binding)
    , media_(std::move(media))
    , onClipChanged_(std::move(onClipChanged))
    , isOpening_(notifier, Property::isOpening)
    , pendingRelinkProject_(notifier, Property::pendingRelinkProject) {}

std::uint64_t ClipImport::begin(const std::string& name) {
    isOpening_.set(name);
    return ++importGeneration_;
}

/// Runs work for a request; what it comes to is dropped when another request has followed.
template <typename Work, typename Done>
void ClipImport::start(BackgroundQueue queue, std::uint64_t generation, Work work, Done done) {
    jobs_.start(queue, std::move(work), [this, generation, done = std::move(done)](auto& outcome) {
        if (generation != importGeneration_) return;
        try {
            done(outcome.get());
        } catch (const std::exception& error) {
            isOpening_.set({});
            alert_.show(sentenceFor(error));
        }
    });
}

void ClipImport::importClip(const std::filesystem::path& clip, std::optional<FlowtideProject> restoring) {
    const std::uint64_t generation = begin(clip.filename().string());
    start(
        BackgroundQueue::clips, generation,
        [media = media_, clip] {
            Opened opened{std::make_shared<const ImportedClip>(media->loadClip(clip)), {}};
            opened.fingerprint = media->fingerprint(clip);
            return opened;
        },
        [this, generation, restoring = std::move(restoring)](const Opened& opened) {
            if (restoring)
                install(opened, restoring);
            else
                findProject(generation, opened);
        });
}

void ClipImport::findProject(std::uint64_t generation, const Opened& opened) {
    start(
        BackgroundQueue::projects, generation,
        [store = binding_.store(), fingerprint = opened.fingerprint] { return store->loadFor(fingerprint); },
        [this, opened](std::optional<FlowtideProject> project) {
            // Nobody has asked for it by name: one that does not fit any more is left alone.
            if (project && !fits(project->edits, *opened.clip)) project.reset();
            install(opened, project);
        });
}

void ClipImport::install(const Opened& opened, const std::optional<FlowtideProject>& project) {
    const ImportedClip& clip = *opened.clip;
    if (project) {
        if (project->source.fingerprint != opened.fingerprint)
            throw ProjectError::invalid("This video does not match the project's original clip. Choose the original "
                                        "file to relink it.");
        validate(project->edits, clip.duration);
    }
    session_.preview().pausePlayback();
    binding_.saveProjectIfPending(); // the one that is open
    session_.open(opened.clip);
    onClipChanged_();
    ClipReference source;
    if (project) source.bookmark = project->source.bookmark;
    source.url = Url::ofFile(std::filesystem::absolute(clip.url));
    source.fingerprint = opened.fingerprint;
    source.duration = clip.duration;
    std::optional<ReferenceDate> stored;
    if (project) stored = project->savedAt;
    binding_.bind(project ? project->id : Uuid::random(), std::move(source), stored);
    if (project) session_.applyProjectEdits(project->edits);
    session_.preview().resetPreview();
    pendingRelinkProject_.set({});
    isOpening_.set({});
    binding_.saveProjectNow();
}

void ClipImport::openFound(const FoundProject& found) {
    if (found.clip) {
        importClip(*found.clip, found.project);
        return;
    }
    isOpening_.set({});
    pendingRelinkProject_.set(found.project);
}

void ClipImport::openProject(const std::filesystem::path& file) {
    start(
        BackgroundQueue::projects, begin(file.filename().string()),
        [file] {
            FoundProject found{ProjectStore::load(file), {}};
            found.clip = ProjectStore::resolve(found.project);
            return found;
        },
        [this](const FoundProject& found) { openFound(found); });
}

void ClipImport::restoreLastProject() {
    start(
        BackgroundQueue::projects, begin(std::string()),
        [store = binding_.store()]() -> std::optional<FoundProject> {
            const RecentProjects recent = store->recent();
            if (recent.empty()) return std::nullopt;
            try {
                FoundProject found{ProjectStore::load(*recent.front().projectURL.filePath()), {}};
                found.clip = ProjectStore::resolve(found.project);
                return found;
            } catch (const ProjectError&) {
                return std::nullopt; // nobody has asked for it: the start screen lists it
            }
        },
        [this](const std::optional<FoundProject>& found) {
            if (found) openFound(*found);
        });
}

void ClipImport::relinkProject(const std::filesystem::path& clip) {
    if (!pendingRelinkProject()) return;
    start(
        BackgroundQueue::projects, begin(clip.filename().string()),
        [store = binding_.store(), project = *pendingRelinkProject(), clip] { return store->relink(project, clip); },
        [this, clip](const FlowtideProject& project) { importClip(clip, project); });
}

void ClipImport::reset() {
    begin(std::string());
    session_.preview().pausePlayback();
    binding_.saveProjectNow();
    binding_.unbind();
    session_.open({});
    onClipChanged_();
    session_.preview().resetPreview();
}

} // namespace flowtide
