#include "ui/controls/drag_guard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <utility>

namespace flowtide {

DragGuard::DragGuard(std::function<void()> cancel)
    : cancel_(std::move(cancel)) {}

void DragGuard::begin() {
    // The newest filter is asked first, so that the window does not see the key.
    qApp->installEventFilter(this);
}

void DragGuard::end() {
    qApp->removeEventFilter(this);
}

bool DragGuard::keepsKey(int key, bool isOnlyAsked) {
    if (key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
        key == Qt::Key_AltGr)
        return false; // they change what the drag does
    if (key != Qt::Key_Escape || isOnlyAsked) return true;
    end();
    cancel_();
    return true;
}

bool DragGuard::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        if (!keepsKey(static_cast<QKeyEvent*>(event)->key(), event->type() == QEvent::ShortcutOverride)) return false;
        event->accept();
        return true;
    case QEvent::ContextMenu:
        return true;
    case QEvent::MouseMove:
        // The release went elsewhere, for example because what was dragged has been hidden.
        if (!(static_cast<QMouseEvent*>(event)->buttons() & Qt::LeftButton)) end();
        return false;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton;
    default:
        return false;
    }
}

} // namespace flowtide
