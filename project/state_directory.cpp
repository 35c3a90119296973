// The order in which the state folder is looked for, and the move from its former ones.
#include "project/state_directory.h"

#include "project/files/atomic_file.h"
#include "project/files/project_error.h"

#include <fcntl.h>
#include <pwd.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <vector>

namespace flowtide {
namespace {

namespace fs = std::filesystem;

constexpr const char* folderName = "Loftwell Video";
/// The program's names before, newest first.
constexpr const char* formerFolderNames[] = {"Flowtide", "Flowtide Studio"};

fs::path homeFolder(const Environment& environment) {
    if (const auto home = environment("HOME"); home && !home->empty()) return *home;
    if (const passwd* user = ::getpwuid(::getuid()); user && user->pw_dir) return user->pw_dir;
    throw ProjectError::invalid("Your home folder could not be found.");
}

/// A relative $XDG_DATA_HOME counts as unset, as its standard says.
fs::path dataFolder(const Environment& environment) {
    if (const auto data = environment("XDG_DATA_HOME"); data && fs::path(*data).is_absolute()) return *data;
    return homeFolder(environment) / ".local" / "share";
}

/// Never replaces anything, not even what appears at the last moment.
void moveUnlessTaken(const fs::path& from, const fs::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0 || errno != EINVAL) return;
    // The file system cannot do it in one step.
    std::error_code ignored;
    if (fs::symlink_status(to, ignored).type() == fs::file_type::not_found) fs::rename(from, to, ignored);
}

} // namespace

std::optional<std::string> processEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

fs::path stateDirectory(const Environment& environment) {
    if (const auto chosen = environment("FLOWTIDE_STATE_DIR"); chosen && !chosen->empty()) return fs::absolute(*chosen);
    return defaultDirectory(environment);
}

fs::path defaultDirectory(const Environment& environment, FileOperations& operations) {
    const fs::path parent = dataFolder(environment);
    fs::path folder = parent / folderName;
    try {
        makePrivateFolders(operations, folder);
    } catch (const ProjectError&) {
        return folder; // the first save makes it, or says why it cannot
    }
    for (const char* name : formerFolderNames)
        migrateDirectory(parent / name, folder);
    return folder;
}

void migrateDirectory(const fs::path& from, const fs::path& to) {
    std::error_code ignored;
    std::vector<fs::path> names;
    for (fs::directory_iterator entry(from, ignored), end; !ignored && entry != end; entry.increment(ignored))
        names.push_back(entry->path().filename());
    for (const fs::path& name : names)
        if (name != ".DS_Store") moveUnlessTaken(from / name, to / name);
}

} // namespace flowtide
