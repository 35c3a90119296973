#include "ui/controls/drag_escape.h"

#include <QApplication>
#include <QKeyEvent>
#include <utility>

namespace flowtide {

DragEscape::DragEscape(std::function<void()> cancel)
    : cancel_(std::move(cancel)) {}

void DragEscape::begin() {
    // The newest filter is asked first, so that the window does not see the key.
    qApp->installEventFilter(this);
}

void DragEscape::end() {
    qApp->removeEventFilter(this);
}

bool DragEscape::eventFilter(QObject*, QEvent* event) {
    const bool isAsked = event->type() == QEvent::ShortcutOverride;
    if (!isAsked && event->type() != QEvent::KeyPress) return false;
    if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) return false;
    event->accept();
    if (isAsked) return true;
    end();
    cancel_();
    return true;
}

} // namespace flowtide
