// Values of the curve, the framing and the clip.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class Inspector final : public QWidget {
    Q_OBJECT

public:
    explicit Inspector(SessionHost& host, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
