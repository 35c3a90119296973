// Messages of the desktop.
#pragma once

#include <QObject>
#include <QString>
#include <functional>

namespace flowtide {

/// Shows one message at a time, by the desktop's notification service. Where there is none, nothing happens.
class DesktopNotification final : public QObject {
    Q_OBJECT

public:
    /// `action`: the label of a button, which calls `onAction`; without one the message has none.
    void show(const QString& title, const QString& body, const QString& action = {},
              std::function<void()> onAction = {});

private:
    Q_SLOT void actionInvoked(uint id, const QString& key);

    uint id_ = 0; ///< of the last message, which the next one replaces
    bool isListening_ = false;
    std::function<void()> onAction_;
};

} // namespace flowtide
