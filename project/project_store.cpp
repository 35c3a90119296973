// Saves and lists projects under the lock of their folder, finds and relinks them.
#include "project/project_store.h"

#include "project/clip_fingerprint.h"
#include "project/files/atomic_file.h"
#include "project/files/local_file_safety.h"
#include "project/files/project_error.h"
#include "project/project_json.h"
#include "project/state_directory.h"

#include <algorithm>
#include <set>
#include <system_error>
#include <utility>

namespace flowtide {
namespace {

namespace fs = std::filesystem;

constexpr const char* projectExtension = ".flowtide";

/// Absolute, without "." and "..": how locations are compared.
fs::path standardized(const fs::path& path) {
    return fs::absolute(path).lexically_normal();
}

std::string clipName(const FlowtideProject& project) {
    return project.source.url.filePath().value_or(fs::path()).filename().string();
}

/// Replaces the project's entry where it stands; a new one comes to the front.
void addOrReplace(RecentProjects& list, const RecentProject& entry) {
    const auto same =
        std::find_if(list.begin(), list.end(), [&](const RecentProject& each) { return each.id == entry.id; });
    if (same != list.end())
        *same = entry;
    else
        list.insert(list.begin(), entry);
}

} // namespace

ProjectStore::ProjectStore(std::optional<fs::path> directory, FileOperations& operations)
    : directory_(directory ? fs::absolute(*directory) : stateDirectory())
    , operations_(operations) {}

fs::path ProjectStore::projectFile(const Uuid& id) const {
    return directory_ / (id.text() + projectExtension);
}

fs::path ProjectStore::indexFile() const {
    return directory_ / "recent-projects.json";
}

void ProjectStore::save(const FlowtideProject& project) {
    saveIf(project, [](const RecentProjects&) { return true; });
}

bool ProjectStore::saveUnlessChanged(const FlowtideProject& project, std::optional<ReferenceDate> expected) {
    return saveIf(project, [&](const RecentProjects& list) {
        const auto stored = storedDate(project.id, list);
        return !stored || stored == expected;
    });
}

/// `isWanted` decides while nobody else can save.
bool ProjectStore::saveIf(const FlowtideProject& project, const std::function<bool(const RecentProjects&)>& isWanted) {
    const std::string document = encodeProject(project);
    const fs::path file = projectFile(project.id);
    makePrivateFolders(operations_, directory_);
    bool isSaved = false;
    changeRecent([&](RecentProjects& list) {
        isSaved = isWanted(list);
        if (!isSaved) return false;
        writeAtomically(operations_, file, document);
        addOrReplace(list,
                     {project.id, clipName(project), Url::ofFile(file), project.source.fingerprint, project.savedAt});
        return true;
    });
    if (isSaved) removeLegacySidecar(project);
    return isSaved;
}

std::optional<ReferenceDate> ProjectStore::savedDate(const Uuid& id) const {
    try {
        return load(projectFile(id)).savedAt;
    } catch (const ProjectError&) {
        return std::nullopt;
    }
}

/// The same; of a file that cannot be read, the list's. The list alone is not to be relied upon: it is written after
/// the file, and may have stayed behind it.
std::optional<ReferenceDate> ProjectStore::storedDate(const Uuid& id, const RecentProjects& list) const {
    std::error_code ignored;
    if (!fs::exists(projectFile(id), ignored)) return std::nullopt;
    if (const auto date = savedDate(id)) return date;
    for (const RecentProject& entry : list)
        if (entry.id == id) return entry.savedAt;
    return std::nullopt;
}

RecentProjects ProjectStore::recent() const {
    try {
        auto list = decodeRecentProjects(LocalFileSafety::read(indexFile(), maximumRecentIndexBytes));
        std::erase_if(list, [](const RecentProject& entry) { return !entry.projectURL.filePath(); });
        for (RecentProject& entry : list)
            followMovedFolder(entry);
        return list;
    } catch (const ProjectError&) {
        return {};
    }
}

/// After the whole folder was moved the list still names the files' old places.
void ProjectStore::followMovedFolder(RecentProject& entry) const {
    const fs::path own = projectFile(entry.id);
    const fs::path listed = *entry.projectURL.filePath();
    std::error_code ignored;
    if (listed != own && fs::exists(own, ignored) && !fs::exists(listed, ignored)) entry.projectURL = Url::ofFile(own);
}

void ProjectStore::removeFromRecent(const Uuid& id) {
    if (recent().empty()) return;
    changeRecent([&](RecentProjects& list) {
        return std::erase_if(list, [&](const RecentProject& entry) { return entry.id == id; }) > 0;
    });
}

void ProjectStore::repoint(const fs::path& from, const fs::path& to) {
    if (recent().empty()) return;
    const fs::path old = standardized(from);
    changeRecent([&](RecentProjects& list) {
        bool changed = false;
        for (RecentProject& entry : list) {
            if (standardized(*entry.projectURL.filePath()) != old) continue;
            entry.projectURL = Url::ofFile(standardized(to));
            changed = true;
        }
        return changed;
    });
}

/// Reads, changes and writes the list while no other process can; `change` returns whether there is anything to write.
void ProjectStore::changeRecent(const std::function<bool(RecentProjects&)>& change) {
    const FolderLock lock(operations_, directory_);
    removeAbandonedSaves(operations_, directory_);
    RecentProjects list = recent();
    if (!change(list)) return;
    if (list.size() > maximumRecentProjects) list.resize(maximumRecentProjects);
    writeAtomically(operations_, indexFile(), encodeRecentProjects(list));
}

void ProjectStore::removeLegacySidecar(const FlowtideProject& project) {
    const auto clip = project.source.url.filePath();
    if (!clip) return;
    const fs::path sidecar = clip->parent_path() / ("." + clip->filename().string() + ".flowtide-sidecar");
    std::error_code ignored;
    if (fs::is_regular_file(fs::symlink_status(sidecar, ignored))) operations_.remove(sidecar);
}

std::optional<FlowtideProject> ProjectStore::loadFor(const std::string& fingerprint) const {
    // A set, so that files that the list names are not read twice and ties always end the same way.
    std::set<fs::path> files;
    std::error_code ignored;
    for (fs::directory_iterator entry(directory_, ignored), end; !ignored && entry != end; entry.increment(ignored))
        if (entry->path().extension() == projectExtension) files.insert(standardized(entry->path()));
    for (const RecentProject& entry : recent())
        files.insert(standardized(*entry.projectURL.filePath()));

    std::optional<FlowtideProject> newest;
    for (const fs::path& file : files) {
        try {
            FlowtideProject project = load(file);
            if (project.source.fingerprint == fingerprint && (!newest || newest->savedAt < project.savedAt))
                newest = std::move(project);
        } catch (const ProjectError&) {
            // One damaged file must not hide the others.
        }
    }
    return newest;
}

FlowtideProject ProjectStore::load(const fs::path& file) {
    return decodeProject(LocalFileSafety::read(file, maximumProjectBytes));
}

std::optional<fs::path> ProjectStore::resolve(const FlowtideProject& project) {
    auto clip = project.source.url.filePath();
    try {
        if (clip && clipFingerprint(*clip) == project.source.fingerprint) return clip;
    } catch (const ProjectError&) {
        // Gone or unreadable: not found.
    }
    return std::nullopt;
}

FlowtideProject ProjectStore::relink(FlowtideProject project, const fs::path& clip) {
    if (clipFingerprint(clip) != project.source.fingerprint)
        throw ProjectError::invalid("This video does not match the project's original clip. Choose the original file "
                                    "to relink it.");
    project.source.url = Url::ofFile(clip);
    // It leads to the old place.
    project.source.bookmark.reset();
    return project;
}

} // namespace flowtide
