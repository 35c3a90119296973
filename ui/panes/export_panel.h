// How an export goes, and what came of it.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class ExportPanel final : public QWidget {
    Q_OBJECT

public:
    ExportPanel(SessionHost& host, std::function<void(Command)> perform, QWidget* parent = nullptr);

    /// Where its last export went.
    void setDestination(const std::filesystem::path& destination);
    /// Esc.
    bool dismiss();

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
