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
    if (sheet_ == &sheet) return;
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

void SheetHost::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::faded(theme::scrim, opening_.value()));
}

void SheetHost::mousePressEvent(QMouseEvent* event) {
    // Nothing behind a sheet can be reached.
    event->accept();
}

} // namespace flowtide
