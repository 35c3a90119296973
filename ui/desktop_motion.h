// Whether the desktop was asked for less motion.
#pragma once

#include <QDBusVariant>
#include <QObject>

namespace flowtide {

/// Asks the desktop's settings, through its portal, and follows them while it lives; where there is none things move.
class DesktopMotion final : public QObject {
    Q_OBJECT

public:
    DesktopMotion();

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

} // namespace flowtide
