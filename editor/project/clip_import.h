// Opens clips and projects.
#pragma once

#include "editor/jobs/session_media.h"
#include "editor/project/project_binding.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace flowtide {

/// Each request ends the one before it, whose late result is dropped. The open clip stays as it is until the new one is
/// ready, and is saved before it goes. Failures are shown in the alert. Main thread only.
class ClipImport {
public:
    ClipImport(EditSession& session, SessionJobs& jobs, ChangeNotifier& notifier, ErrorAlert& alert,
               ProjectBinding& binding, std::shared_ptr<SessionMedia> media, std::function<void()> onClipChanged);

    /// The name of the file that is being opened; empty when none is.
    const std::string& isOpening() const { return isOpening_.get(); }
    /// A project whose clip was not found and has to be located.
    const std::optional<FlowtideProject>& pendingRelinkProject() const { return pendingRelinkProject_.get(); }

    /// Opens a clip with the edits of its newest project, or else as a new project.
    void importClip(const std::filesystem::path& clip) { importClip(clip, {}); }
    void openProject(const std::filesystem::path& file);
    /// The one of the recent projects that was saved last, when there is one that can be opened.
    void restoreLastProject();
    /// The user has located the clip of the pending project.
    void relinkProject(const std::filesystem::path& clip);
    /// The pending project is closed again, and what is under way for it.
    void forgetPendingRelink();
    /// Saves and closes the clip: back to the start screen.
    void reset();

private:
    struct Opened {
        OpenClip clip;
        std::string fingerprint;
    };
    using StoredProject = std::shared_ptr<const ProjectBinding::Stored>;
    struct Restoring {
        FlowtideProject project;
        StoredProject open; ///< set: the project is what this, of the open one, had stored when it was read
    };
    static Restoring restoringFrom(FlowtideProject project, const StoredProject& open);
    struct FoundProject {
        Restoring restoring;
        std::optional<std::filesystem::path> clip; ///< nothing when it is not where it was
    };
    static FoundProject find(const std::filesystem::path& file, const StoredProject& open);
    std::uint64_t begin(const std::string& name);
    void importClip(const std::filesystem::path& clip, std::optional<Restoring> restoring);
    template <typename Work, typename Done>
    void start(BackgroundQueue queue, std::uint64_t generation, Work work, Done done);
    void openFound(const FoundProject& found);
    void findProject(std::uint64_t generation, const Opened& opened);
    void install(const Opened& opened, const std::optional<Restoring>& restoring);

    EditSession& session_;
    SessionJobs& jobs_;
    ErrorAlert& alert_;
    ProjectBinding& binding_;
    std::shared_ptr<SessionMedia> media_;
    std::function<void()> onClipChanged_; ///< jobs for the clip before end
    Observed<std::string> isOpening_;
    Observed<std::optional<FlowtideProject>> pendingRelinkProject_;
    StoredProject pendingIsOpen_; ///< as Restoring::open
    std::uint64_t importGeneration_ = 0;
};

} // namespace flowtide
