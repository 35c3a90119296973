#include "ui/desktop_notification.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <utility>

namespace flowtide {

namespace {

constexpr int usualTime = -1; ///< as long as the desktop finds right

QString service() {
    return QStringLiteral("org.freedesktop.Notifications");
}
QString path() {
    return QStringLiteral("/org/freedesktop/Notifications");
}

} // namespace

void DesktopNotification::show(const QString& title, const QString& body, const QString& action,
                               std::function<void()> onAction) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    if (!isListening_)
        isListening_ = bus.connect(service(), path(), service(), QStringLiteral("ActionInvoked"), this,
                                   SLOT(actionInvoked(uint, QString)));
    onAction_ = std::move(onAction);
    QStringList actions;
    if (!action.isEmpty()) actions << QStringLiteral("default") << action << QStringLiteral("show") << action;
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QGuiApplication::desktopFileName()}};
    QDBusMessage call = QDBusMessage::createMethodCall(service(), path(), service(), QStringLiteral("Notify"));
    call << QGuiApplication::applicationDisplayName() << id_ << QGuiApplication::desktopFileName() << title << body
         << actions << hints << usualTime;
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<uint> reply = *answer;
        if (!reply.isError()) id_ = reply.value();
        answer->deleteLater();
    });
}

void DesktopNotification::actionInvoked(uint id, const QString&) {
    if (id == id_ && onAction_) onAction_();
}

} // namespace flowtide
