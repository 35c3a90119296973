#include "ui/show_in_folder.h"

#include "ui/value_text.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QUrl>

namespace flowtide {

namespace {
void openFolder(const std::filesystem::path& file) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(valueText::path(file.parent_path())));
}
} // namespace

void showInFolder(const std::filesystem::path& file) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return openFolder(file);
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(valueText::path(file)).toString(QUrl::FullyEncoded)} << QString();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, file] {
        answer->deleteLater();
        if (answer->isError()) openFolder(file);
    });
}

} // namespace flowtide
