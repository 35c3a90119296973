// The picture alone, on the whole screen.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class FullScreenPreview final : public QWidget {
    Q_OBJECT

public:
    FullScreenPreview(SessionHost& host, std::function<void(Command)> perform);

    void open(const QWidget& beside);
    void leave();

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
