// What hangs over a window with an open project.
#pragma once

#include <QString>
#include <QWidget>

namespace flowtide {

/// Dims the window and says what a drop would do.
class DropOverlay final : public QWidget {
    Q_OBJECT

public:
    explicit DropOverlay(QWidget& window);

    /// The file's name, and whether it can be opened; empty: nothing hangs there.
    void showDrop(const QString& name, bool isOpenable);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    bool isOpenable_ = false;
};

} // namespace flowtide
