// The ways to an open clip.
#include "editor/project/clip_import.h"

#include "media/failure_sentence.h"
#include "project/files/project_error.h"
#include "project/project_validation.h"

#include <algorithm>
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

/// In the queue of projects.
ClipImport::Restoring ClipImport::restoringFrom(FlowtideProject project, const StoredProject& open) {
    const bool isOpen = open && open->is(project);
    return {std::move(project), isOpen ? open : nullptr};
}

/// In the queue of projects.
ClipImport::FoundProject ClipImport::find(const std::filesystem::path& file, const StoredProject& open) {
    FoundProject found{restoringFrom(ProjectStore::load(file), open), {}};
    found.clip = ProjectStore::resolve(found.restoring.project);
    return found;
}

void ClipImport::importClip(const std::filesystem::path& clip, std::optional<Restoring> restoring) {
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
        [store = binding_.store(), fingerprint = opened.fingerprint,
         open = StoredProject(binding_.stored())]() -> std::optional<Restoring> {
            auto project = store->loadFor(fingerprint);
            if (!project) return std::nullopt;
            return restoringFrom(std::move(*project), open);
        },
        [this, opened](std::optional<Restoring> restoring) {
            // Nobody has asked for it by name: one that does not fit any more is left alone.
            if (restoring && !fits(restoring->project.edits, *opened.clip)) restoring.reset();
            install(opened, restoring);
        });
}

void ClipImport::install(const Opened& opened, const std::optional<Restoring>& restoring) {
    const ImportedClip& clip = *opened.clip;
    const FlowtideProject* project = restoring ? &restoring->project : nullptr;
    // What has been edited since it was stored is a part of the project that is open.
    const bool isOpen = restoring && restoring->open && restoring->open == binding_.stored();
    if (project) {
        if (project->source.fingerprint != opened.fingerprint)
            throw ProjectError::invalid("This video does not match the project's original clip. Choose the original "
                                        "file to relink it.");
        validate(isOpen ? session_.projectEdits() : project->edits, clip.duration);
    }
    session_.preview().pausePlayback();
    std::optional<ProjectEdits> edits;
    if (project) edits = isOpen ? session_.projectEdits() : project->edits;
    binding_.saveProjectIfPending(); // the one that is open
    session_.open(opened.clip);
    onClipChanged_();
    ClipReference source;
    if (project) source.bookmark = project->source.bookmark;
    source.url = Url::ofFile(std::filesystem::absolute(clip.url));
    source.fingerprint = opened.fingerprint;
    source.duration = clip.duration;
    if (isOpen)
        binding_.rebind(std::move(source));
    else if (project)
        binding_.bind(project->id, std::move(source), project->savedAt);
    else
        binding_.bind(Uuid::random(), std::move(source), {});
    if (edits) session_.applyProjectEdits(*edits);
    session_.preview().resetPreview();
    pendingRelinkProject_.set({});
    isOpening_.set({});
    binding_.saveProjectNow();
}

void ClipImport::openFound(const FoundProject& found) {
    if (found.clip) {
        importClip(*found.clip, found.restoring);
        return;
    }
    session_.preview().pausePlayback(); // the view that asks for the clip covers it
    isOpening_.set({});
    pendingIsOpen_ = found.restoring.open;
    pendingRelinkProject_.set(found.restoring.project);
}

void ClipImport::openProject(const std::filesystem::path& file) {
    start(
        BackgroundQueue::projects, begin(file.filename().string()),
        [file, open = StoredProject(binding_.stored())] { return find(file, open); },
        [this](const FoundProject& found) { openFound(found); });
}

void ClipImport::restoreLastProject() {
    start(
        BackgroundQueue::projects, begin(std::string()),
        [store = binding_.store(), open = StoredProject(binding_.stored())]() -> std::optional<FoundProject> {
            // The list is in the order in which projects were added; what was worked on last was saved last.
            const RecentProjects recent = store->recent();
            const auto last = std::max_element(recent.begin(), recent.end(),
                                               [](const auto& a, const auto& b) { return a.savedAt < b.savedAt; });
            if (last == recent.end()) return std::nullopt;
            try {
                return find(*last->projectURL.filePath(), open);
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
        [project = *pendingRelinkProject(), clip] { return ProjectStore::relink(project, clip); },
        [this, clip, open = pendingIsOpen_](const FlowtideProject& project) {
            importClip(clip, Restoring{project, open}); // saved as it is installed
        });
}

void ClipImport::forgetPendingRelink() {
    if (!pendingRelinkProject()) return;
    begin(std::string());
    pendingRelinkProject_.set({});
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
