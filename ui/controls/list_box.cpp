#include "ui/controls/list_box.h"

#include "ui/accessible_role.h"
#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr double padding = 8;
constexpr double chevronRoom = 28;
} // namespace

ListBox::ListBox(QString name, QStringList items, QWidget* parent)
    : QPushButton(parent)
    , name_(std::move(name))
    , items_(std::move(items)) {
    setFixedHeight(28);
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, theme::controlRadius);
    setChosen(0);
    connect(this, &QPushButton::clicked, this, [this] { openMenu(); });
}

void ListBox::setChosen(int index) {
    chosen_ = index;
    setSpokenName(*this, QStringLiteral("%1: %2").arg(name_, items_[index]));
    update();
}

void ListBox::choose(int index) {
    index = std::clamp(index, 0, static_cast<int>(items_.size()) - 1);
    if (index == chosen_) return;
    setChosen(index);
    if (onChoice) onChoice(index);
}

QSize ListBox::sizeHint() const {
    double widest = 0;
    for (const QString& item : items_)
        widest = std::max(widest, theme::textWidth(theme::Type::code, item));
    return {static_cast<int>(std::ceil(widest + padding + chevronRoom)), 28};
}

void ListBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Up)
        choose(chosen_ - 1);
    else if (event->key() == Qt::Key_Down)
        choose(chosen_ + 1);
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        openMenu();
    else
        QPushButton::keyPressEvent(event);
}

void ListBox::openMenu() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int index = 0; index < items_.size(); ++index) {
        QAction* action = menu->addAction(items_[index]);
        action->setCheckable(true);
        action->setChecked(index == chosen_);
        connect(action, &QAction::triggered, this, [this, index] { choose(index); });
    }
    menu->setMinimumWidth(width());
    menu->popup(mapToGlobal(QPoint(0, height() + 4)));
}

void ListBox::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    const QColor line = isEnabled() ? hover_.color(edge, fieldHover, fieldHover) : hairline;
    drawBox(painter, rect(), controlRadius, isEnabled() ? hover_.color(well, well, raised) : pane, line);
    drawLine(painter, QRectF(rect()).adjusted(padding, 0, -chevronRoom, 0), Qt::AlignLeft, Type::code,
             isEnabled() ? theme::text : text3, items_[chosen_]);
    icons::draw(painter, QStringLiteral("chevron-down"), QRectF(width() - chevronRoom, 0, chevronRoom, height()), 14,
                isEnabled() ? text2 : text3);
}

} // namespace flowtide
