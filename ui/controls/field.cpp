#include "ui/controls/field.h"

#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {
constexpr int padding = 8;
constexpr int chevronRoom = 28;
constexpr int largeStep = 10;
constexpr double sameValue = 1e-9;
} // namespace

Field::Field(const QString& name, Format format, QWidget* parent)
    : QLineEdit(parent)
    , format_(std::move(format)) {
    setAccessibleName(name);
    setFont(theme::font(theme::Type::code));
    setFrame(false);
    setFixedHeight(28);
    setTextMargins(padding, 0, padding, 0);
    setContextMenuPolicy(Qt::NoContextMenu);
    setFocusRing(*this, theme::controlRadius);
    setAttribute(Qt::WA_Hover);
    setAutoFillBackground(false);
    connect(this, &QLineEdit::textEdited, this, [this] { setRefused({}); });
}

void Field::setPresets(std::vector<Preset> presets) {
    presets_ = std::move(presets);
    setTextMargins(padding, 0, presets_.empty() ? padding : chevronRoom, 0);
}

void Field::showValue(double value) {
    value_ = value;
    // What is being typed is the user's.
    if (!hasFocus() || !isModified()) restore();
}

void Field::restore() {
    setRefused({});
    setText(format_.text(value_));
    setModified(false);
}

void Field::apply() {
    if (!isModified()) return;
    if (const auto value = format_.value(text()))
        want(*value);
    else if (format_.noValue.isEmpty())
        restore();
    else
        setRefused(format_.noValue);
}

void Field::want(double value) {
    const auto refusal = onValue ? onValue(value) : std::nullopt;
    if (refusal) {
        setRefused(refusal);
        return;
    }
    setModified(false);
    value_ = value;
    restore();
}

void Field::setRefused(std::optional<QString> sentence) {
    const bool changes = isRefused_ || sentence;
    isRefused_ = sentence.has_value();
    if (changes && onRefused) onRefused(std::move(sentence));
    update();
}

void Field::keyPressEvent(QKeyEvent* event) {
    const int steps = event->modifiers() & Qt::ShiftModifier ? largeStep : 1;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        apply();
        selectAll();
        return;
    case Qt::Key_Escape:
        if (!isEdited()) return event->ignore();
        restore();
        selectAll();
        return;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (event->modifiers() & Qt::AltModifier && !presets_.empty()) return openMenu();
        apply();
        if (format_.stepped) want(format_.stepped(value_, event->key() == Qt::Key_Up ? steps : -steps));
        selectAll();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void Field::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (event->reason() != Qt::PopupFocusReason) selectAll();
}

void Field::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::PopupFocusReason) {
        apply();
        if (isRefused_) restore();
        deselect();
    }
    QLineEdit::focusOutEvent(event);
}

bool Field::isOnChevron(const QPointF& place) const {
    return !presets_.empty() && place.x() > width() - chevronRoom;
}

void Field::mousePressEvent(QMouseEvent* event) {
    if (isOnChevron(event->position())) return openMenu();
    const bool hadFocus = hasFocus();
    QLineEdit::mousePressEvent(event);
    if (!hadFocus) selectAll();
}

void Field::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void Field::openMenu() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const Preset& preset : presets_) {
        QAction* action = menu->addAction(preset.label);
        action->setCheckable(true);
        action->setChecked(std::abs(preset.value - value_) < sameValue);
        connect(action, &QAction::triggered, this, [this, value = preset.value] { want(value); });
    }
    menu->setMinimumWidth(width());
    menu->popup(mapToGlobal(QPoint(0, height() + 4)));
}

void Field::paintEvent(QPaintEvent* event) {
    using namespace theme;
    {
        QPainter painter(this);
        const QColor line = !isEnabled() ? hairline
                            : isRefused_ ? attention
                            : hasFocus() ? fieldHover
                                         : hover_.color(edge, fieldHover, fieldHover);
        drawBox(painter, rect(), controlRadius, isEnabled() ? well : pane, line);
        if (!presets_.empty())
            icons::draw(painter, QStringLiteral("chevron-down"),
                        QRectF(width() - chevronRoom, 0, chevronRoom, height()), 14, isEnabled() ? text2 : text3);
    }
    QLineEdit::paintEvent(event);
}

} // namespace flowtide
