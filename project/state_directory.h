// Finds the folder that projects are kept in, and brings in what the folders of former names hold.
#pragma once

#include "project/files/file_operations.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace flowtide {

/// Looks up an environment variable; nothing when it is not set.
using Environment = std::function<std::optional<std::string>(const char* name)>;
/// The process's own.
std::optional<std::string> processEnvironment(const char* name);

/// $FLOWTIDE_STATE_DIR when it is set and not empty, else the default folder, as an absolute path.
std::filesystem::path stateDirectory(const Environment& environment = processEnvironment);

/// "Loftwell Video" in $XDG_DATA_HOME, by default ~/.local/share; created when needed (0700), and given what the state
/// folders of the program's former names hold. Where it cannot be created the first save says why. Throws ProjectError
/// when there is no home folder.
std::filesystem::path defaultDirectory(const Environment& environment,
                                       FileOperations& operations = systemFileOperations());

/// Moves each item of `from` to `to`, except ".DS_Store" and items whose name is taken there. Best effort: what cannot
/// be moved stays.
void migrateDirectory(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace flowtide
