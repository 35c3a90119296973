// Which files the window opens.
#pragma once

#include <QMimeData>
#include <QString>
#include <filesystem>
#include <optional>

namespace flowtide::openable {

/// By the name's end, in any case: "mov", "mp4", "m4v", and the project's "flowtide".
bool isClip(const std::filesystem::path& file);
bool isProject(const std::filesystem::path& file);

/// The first local file of a drop, whatever it is; nothing when there is none.
std::optional<std::filesystem::path> droppedFile(const QMimeData& data);

} // namespace flowtide::openable
