// Keeps every project in one folder, a file each, and the list of recent ones.
#pragma once

#include "project/files/file_operations.h"
#include "project/flowtide_project.h"
#include "project/recent_project.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace flowtide {

/// The state folder. Every file in it is replaced in one step and flushed; changes are made under the folder's lock, so
/// that several processes can use one folder. One thread at a time.
class ProjectStore {
public:
    static constexpr std::size_t maximumRecentProjects = 50;

    /// `directory`: the folder; without one stateDirectory(), which can throw ProjectError. Folder and files are
    /// created on the first save. `operations` must outlive the store.
    explicit ProjectStore(std::optional<std::filesystem::path> directory = {},
                          FileOperations& operations = systemFileOperations());

    const std::filesystem::path& directory() const { return directory_; }
    /// The file of the project with an id.
    std::filesystem::path projectFile(const Uuid& id) const;

    /// Validates the project, writes it, puts it in the recent list (where it stands, if it is there already, else in
    /// front) and drops the file that former versions kept beside the clip. Throws ProjectError.
    void save(const FlowtideProject& project);
    /// The same, unless the project has been saved by somebody else since `expected`, its date when it was last loaded
    /// or saved here (nothing: never): then it writes nothing and returns false. A project that is no longer stored is
    /// stored again.
    [[nodiscard]] bool saveUnlessChanged(const FlowtideProject& project, std::optional<ReferenceDate> expected);

    /// When the folder's file of a project was saved; nothing when there is none that can be read.
    std::optional<ReferenceDate> savedDate(const Uuid& id) const;

    /// The recent projects; empty when there is no readable list. A project whose listed file is gone is listed with
    /// the folder's own file, when there is one.
    RecentProjects recent() const;
    /// Takes a project out of the list; its file stays. Throws ProjectError.
    void removeFromRecent(const Uuid& id);
    /// A project file was moved: corrects the list. Throws ProjectError.
    void repoint(const std::filesystem::path& from, const std::filesystem::path& to);

    /// The newest valid project of the clip with a fingerprint, among the folder's and the list's files.
    std::optional<FlowtideProject> loadFor(const std::string& fingerprint) const;
    /// A chosen project file. Throws ProjectError.
    static FlowtideProject load(const std::filesystem::path& file);

    /// The project's clip where it was last seen; nothing when it is not there or has another fingerprint.
    static std::optional<std::filesystem::path> resolve(const FlowtideProject& project);
    /// The project pointed to its clip's new place, with the date of before: to be saved like any other edit, unless
    /// the stored project is newer. Throws ProjectError when the file is not that clip.
    static FlowtideProject relink(FlowtideProject project, const std::filesystem::path& clip);

private:
    bool saveIf(const FlowtideProject& project, const std::function<bool(const RecentProjects&)>& isWanted);
    std::optional<ReferenceDate> storedDate(const Uuid& id, const RecentProjects& list) const;
    void followMovedFolder(RecentProject& entry) const;
    void changeRecent(const std::function<bool(RecentProjects&)>& change);
    void removeLegacySidecar(const FlowtideProject& project);
    std::filesystem::path indexFile() const;

    std::filesystem::path directory_;
    FileOperations& operations_;
};

} // namespace flowtide
