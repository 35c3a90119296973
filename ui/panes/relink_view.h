// A project whose clip is not where it was.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class RelinkView final : public QWidget {
    Q_OBJECT

public:
    explicit RelinkView(SessionHost& host, QWidget* parent = nullptr);

    /// The user wants to choose a file.
    std::function<void()> onLocate;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
