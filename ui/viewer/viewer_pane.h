// The picture and what lies on it.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class ViewerPane final : public QWidget {
    Q_OBJECT

public:
    explicit ViewerPane(SessionHost& host, QWidget* parent = nullptr);

    /// The sentence for the line under the graph while the pointer is on the picture; empty when it has left.
    std::function<void(const QString& hint)> onHint;
    /// Esc: ends choosing or tracking a subject, or else the comparison; false when there is none.
    bool endTopmost();

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
