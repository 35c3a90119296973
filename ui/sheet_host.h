// Sheets above a window's content.
#pragma once

#include "ui/motion.h"

#include <QPointer>
#include <QWidget>

namespace flowtide {

/// Dims what is behind a sheet and keeps it in the middle. A sheet over another takes its place. The sheet's own size
/// hint says how large it wants to be; it never grows beyond the window.
class SheetHost final : public QWidget {
    Q_OBJECT

public:
    explicit SheetHost(QWidget& window);

    /// Shows a sheet, a child of this from then on; the focus goes to it, and back when it is closed.
    void show(QWidget& sheet);
    void close();
    QWidget* sheet() const { return sheet_; }
    /// To be called when the window has another size.
    void place();

signals:
    void closed();

protected:
    bool focusNextPrevChild(bool isNext) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QPointer<QWidget> sheet_;
    QPointer<QWidget> focusBefore_;
    Fade opening_;
};

} // namespace flowtide
