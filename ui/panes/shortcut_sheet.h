// The reference of all keys.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class ShortcutSheet final : public QWidget {
    Q_OBJECT

public:
    explicit ShortcutSheet(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
