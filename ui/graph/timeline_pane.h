// The timeline area: the graph, its lanes, and what belongs to them.
#pragma once

#include "ui/session_host.h"
#include "ui/shortcuts.h"

#include <QString>
#include <QWidget>

namespace flowtide {

class TimelinePane final : public QWidget {
    Q_OBJECT

public:
    explicit TimelinePane(SessionHost& host, QWidget* parent = nullptr);

    /// Those of the curve and of the time axis: zoomIn to panRight, deletePoints to insertPoint.
    void perform(Command command);
    /// What the line under the graph says while the pointer is on the picture; empty: nothing.
    void setPictureHint(const QString& hint);
    /// What has the focus when the window opens.
    QWidget* graph() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace flowtide
