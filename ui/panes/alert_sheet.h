// The one message of a window.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class AlertSheet final : public QWidget {
    Q_OBJECT

public:
    explicit AlertSheet(SessionHost& host, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
