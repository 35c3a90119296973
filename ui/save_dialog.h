// Where a file is to be saved.
#pragma once

#include <QString>
#include <QWidget>
#include <filesystem>
#include <optional>

namespace flowtide {

/// What the dialog asks for.
struct SaveRequest {
    QString title;
    std::filesystem::path proposed; ///< its extension is given to a name that has none of the kind's
    QString kind;                   ///< in the words of QFileDialog: "Movies (*.mov *.mp4)"
    bool (*isOfKind)(const std::filesystem::path& file);
};

/// Waits for the user; nothing when the dialog is cancelled. A file that is there is only named when the user has
/// agreed to replace it.
std::optional<std::filesystem::path> askWhereToSave(QWidget& window, const SaveRequest& request);

} // namespace flowtide
