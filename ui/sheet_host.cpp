#include "ui/sheet_host.h"

#include "ui/theme.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>

namespace flowtide {

namespace {
constexpr int margin = 24;
constexpr double rise = 4;
} // namespace

SheetHost::SheetHost(QWidget& window)
    : QWidget(&window)
    , opening_(motion::panelMilliseconds, [this] {
        place();
        update();
    }) {
    hide();
}

void SheetHost::show(QWidget& sheet) {
    if (sheet_ == &sheet) {
        place(); // it may say something else by now
        return sheet.setFocus(Qt::OtherFocusReason);
    }
    if (sheet_)
        sheet_->hide();
    else
        focusBefore_ = QApplication::focusWidget();
    sheet_ = &sheet;
    sheet.setParent(this);
    sheet.show();
    opening_.jumpTo(0);
    raise();
    QWidget::show();
    place();
    opening_.moveTo(1);
    sheet.setFocus(Qt::OtherFocusReason);
}

void SheetHost::close() {
    if (!sheet_) return;
    sheet_->hide();
    sheet_ = nullptr;
    hide();
    if (focusBefore_) focusBefore_->setFocus(Qt::OtherFocusReason);
    emit closed();
}

void SheetHost::place() {
    setGeometry(parentWidget()->rect());
    if (!sheet_) return;
    const QSize wanted = sheet_->sizeHint().boundedTo(size() - QSize(2 * margin, 2 * margin));
    const int lower = static_cast<int>(std::lround(rise * (1 - opening_.value())));
    sheet_->setGeometry(
        QRect(QPoint((width() - wanted.width()) / 2, (height() - wanted.height()) / 2 + lower), wanted));
}

bool SheetHost::focusNextPrevChild(bool isNext) {
    // Tab stays in the sheet, from its last control to its first.
    QWidget* const from = focusWidget() ? focusWidget() : this;
    const auto after = [isNext](QWidget* widget) {
        return isNext ? widget->nextInFocusChain() : widget->previousInFocusChain();
    };
    for (QWidget* next = after(from); next != from; next = after(next))
        if (isAncestorOf(next) && next->focusPolicy() & Qt::TabFocus && next->isVisible() && next->isEnabled()) {
            next->setFocus(isNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            break;
        }
    return true;
}

void SheetHost::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::faded(theme::scrim, opening_.value()));
}

void SheetHost::mousePressEvent(QMouseEvent* event) {
    // Nothing behind a sheet can be reached.
    event->accept();
}

} // namespace flowtide
