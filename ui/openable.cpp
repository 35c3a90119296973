#include "ui/openable.h"

#include "ui/value_text.h"

#include <QUrl>

namespace flowtide::openable {

namespace {

QString ending(const std::filesystem::path& file) {
    return valueText::path(file.extension()).toLower();
}

} // namespace

bool isClip(const std::filesystem::path& file) {
    const QString end = ending(file);
    return end == QStringLiteral(".mov") || end == QStringLiteral(".mp4") || end == QStringLiteral(".m4v");
}

bool isProject(const std::filesystem::path& file) {
    return ending(file) == QStringLiteral(".flowtide");
}

std::optional<std::filesystem::path> droppedFile(const QMimeData& data) {
    for (const QUrl& url : data.urls())
        if (url.isLocalFile()) return valueText::path(url.toLocalFile());
    return {};
}

} // namespace flowtide::openable
