// Times, play and steps, and the switches of the picture.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class TransportBar final : public QWidget {
    Q_OBJECT

public:
    TransportBar(SessionHost& host, std::function<void(Command)> perform, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
