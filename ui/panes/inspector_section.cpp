#include "ui/panes/inspector_section.h"

#include "ui/accessible_role.h"
#include "ui/icons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <cmath>

namespace flowtide {

namespace {
constexpr int lineHeight = 1; ///< of the line above
constexpr int headingHeight = 16;
constexpr int actionGap = 4;
constexpr int rowHeight = 20;
constexpr double signRoom = 16;
} // namespace

InspectorSection::InspectorSection(const QString& title, QWidget* parent)
    : QWidget(parent)
    , title_(new LineLabel(theme::Type::caps, theme::text2, {}, this))
    , rows_(new QVBoxLayout(this)) {
    setAccessibleRole(*this, QAccessible::Grouping);
    setTitle(title);
    rows_->setContentsMargins(padding, lineHeight + padding + headingHeight + headingGap, padding, padding);
    rows_->setSpacing(0);
}

void InspectorSection::setTitle(const QString& title) {
    title_->setText(title.toUpper());
    title_->setAccessibleName(title);
    setAccessibleName(title);
}

void InspectorSection::setFirst() {
    isFirst_ = true;
    QMargins margins = rows_->contentsMargins();
    margins.setTop(margins.top() - lineHeight);
    rows_->setContentsMargins(margins);
}

void InspectorSection::addAction(QWidget* action, int overhang) {
    action->setParent(this);
    actions_.push_back({action, overhang});
    action->installEventFilter(this);
    placeHeading();
}

void InspectorSection::add(QWidget* row, int gap) {
    if (gap > 0) rows_->addSpacing(gap);
    rows_->addWidget(row);
}

void InspectorSection::add(QLayout* row, int gap) {
    if (gap > 0) rows_->addSpacing(gap);
    rows_->addLayout(row);
}

void InspectorSection::dropPaddingBelow() {
    QMargins margins = rows_->contentsMargins();
    margins.setBottom(0);
    rows_->setContentsMargins(margins);
}

bool InspectorSection::event(QEvent* event) {
    // What an action says may have become wider, and so may its neighbour's place.
    if (event->type() == QEvent::LayoutRequest) placeHeading();
    return QWidget::event(event);
}

bool InspectorSection::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent) placeHeading();
    return false;
}

void InspectorSection::placeHeading() {
    const int top = padding + (isFirst_ ? 0 : lineHeight);
    const int middle = top + headingHeight / 2;
    int right = width() - padding;
    for (const Action& action : actions_) {
        if (action.widget->isHidden()) continue;
        const QSize size = action.widget->sizeHint().expandedTo(action.widget->minimumSize());
        const QRect place(right + action.overhang - size.width(), middle - size.height() / 2, size.width(),
                          size.height());
        if (action.widget->geometry() != place) action.widget->setGeometry(place);
        right = place.left() + action.overhang - actionGap;
    }
    title_->setGeometry(padding, top, std::max(right - padding, 0), headingHeight);
}

void InspectorSection::resizeEvent(QResizeEvent*) {
    placeHeading();
}

void InspectorSection::paintEvent(QPaintEvent*) {
    if (isFirst_) return;
    QPainter painter(this);
    theme::drawHairline(painter, rect(), theme::Side::top);
}

ValueRow::ValueRow(const QString& label, theme::Type valueType, int labelWidth, QWidget* parent)
    : QWidget(parent)
    , label_(label)
    , type_(valueType)
    , labelWidth_(labelWidth) {
    setFixedHeight(rowHeight);
    setAccessibleRole(*this, QAccessible::StaticText);
    setAccessibleName(label);
}

void ValueRow::setValue(const QString& value) {
    if (value_ == value) return;
    value_ = value;
    setAccessibleName(QStringLiteral("%1: %2").arg(label_, value));
    const double room = width() - labelWidth_;
    setToolTip(labelWidth_ > 0 && theme::textWidth(type_, value) > room ? value : QString());
    update();
}

void ValueRow::setSign(const QString& icon, QColor color, double size) {
    icon_ = icon;
    iconColor_ = color;
    iconSize_ = size;
    update();
}

void ValueRow::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    QRectF words = rect();
    if (iconColor_.isValid()) {
        const QRectF sign(0, 0, iconSize_, height());
        if (icon_.isEmpty()) {
            QRectF dot(0, 0, iconSize_, iconSize_);
            dot.moveCenter(sign.center());
            drawBox(painter, dot, iconSize_ / 2, iconColor_);
        } else {
            icons::draw(painter, icon_, sign, iconSize_, iconColor_);
        }
        words.setLeft(signRoom);
    }
    drawLine(painter, words, Qt::AlignLeft, Type::body, isEnabled() ? labelColor : text3, label_);
    const QColor ink = isEnabled() ? valueColor : text3;
    if (labelWidth_ == 0) return drawLine(painter, rect(), Qt::AlignRight, type_, ink, value_);
    const QRectF room = QRectF(rect()).adjusted(labelWidth_, 0, 0, 0);
    drawLine(painter, room, Qt::AlignLeft, type_, ink,
             QFontMetricsF(theme::font(type_)).elidedText(value_, Qt::ElideMiddle, room.width() + 0.5));
}

QHBoxLayout* labelledRow(const QString& label, QWidget* control, int height) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    auto* words = new LineLabel(theme::Type::body, theme::text, label);
    words->setFixedHeight(height);
    row->addWidget(words, 1);
    row->addWidget(control, 0, Qt::AlignVCenter);
    return row;
}

} // namespace flowtide
