// Shows files in the desktop's file manager.
#pragma once

#include <filesystem>

namespace flowtide {

/// The folder with the file selected, or, where the file manager cannot be asked for that, the folder alone.
void showInFolder(const std::filesystem::path& file);

} // namespace flowtide
