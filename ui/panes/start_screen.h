// What is there before a clip is open.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class StartScreen final : public QWidget {
    Q_OBJECT

public:
    StartScreen(SessionHost& host, std::function<void(Command)> perform, QWidget* parent = nullptr);

    /// Opens one of the recent projects.
    std::function<void(const RecentProject& project)> onProject;
    /// What is dragged over the window: its name, and whether it can be opened; empty: nothing.
    void showDrop(const QString& name, bool isOpenable);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
