#include "ui/desktop_motion.h"

#include "ui/motion.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace flowtide {

namespace {

QString service() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}
QString path() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}
QString interface() {
    return QStringLiteral("org.freedesktop.portal.Settings");
}
QString settingGroup() {
    return QStringLiteral("org.gnome.desktop.interface");
}
QString settingKey() {
    return QStringLiteral("enable-animations");
}

/// The portal wraps what it reads twice.
void use(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    if (value.typeId() == QMetaType::Bool) motion::setReduced(!value.toBool());
}

} // namespace

DesktopMotion::DesktopMotion() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.connect(service(), path(), interface(), QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage call = QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Read"));
    call << settingGroup() << settingKey();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [answer] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (!reply.isError()) use(QVariant::fromValue(reply.value()));
        answer->deleteLater();
    });
}

void DesktopMotion::settingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    if (group == settingGroup() && key == settingKey()) use(QVariant::fromValue(value));
}

} // namespace flowtide
