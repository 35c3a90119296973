#include "ui/panes/message_sheet.h"

#include "ui/accessible_role.h"
#include "ui/controls/labels.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QPainter>
#include <utility>

namespace flowtide {

namespace {
constexpr int sheetWidth = 400;
constexpr int padding = 16;
constexpr int signRoom = 32;
constexpr double signSize = 20;
} // namespace

MessageSheet::MessageSheet(QWidget* parent)
    : QWidget(parent)
    , rows_(new QVBoxLayout(this)) {
    setAccessibleRole(*this, QAccessible::AlertMessage);
    setFocusPolicy(Qt::NoFocus);
    rows_->setContentsMargins(padding, padding, padding, padding);
    rows_->setSpacing(0);
    ok_ = new Button(ButtonKind::secondary, tr("OK"), {}, this);
    connect(ok_, &Button::clicked, this, [this] {
        if (onClose) onClose();
    });
    ok_->setDefault(true);
    setFocusProxy(ok_);
    buttons_ = new QHBoxLayout;
    buttons_->setSpacing(8);
    buttons_->addStretch(1);
    buttons_->addWidget(ok_);
    rows_->addSpacing(16);
    rows_->addLayout(buttons_);
}

void MessageSheet::setContent(const Content& content) {
    delete words_;
    icon_ = content.icon;
    words_ = new QWidget(this);
    auto* column = new QVBoxLayout(words_);
    column->setContentsMargins(icon_.isEmpty() ? 0 : signRoom, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new Paragraph(theme::Type::title, theme::text, content.title, words_));
    for (qsizetype index = 0; index < content.paragraphs.size(); ++index) {
        column->addSpacing(index == 0 ? 4 : 8);
        column->addWidget(new Paragraph(theme::Type::body, theme::text2, content.paragraphs[index], words_));
    }
    rows_->insertWidget(0, words_);
    delete std::exchange(action_, nullptr);
    if (content.question) {
        action_ = new Button(ButtonKind::secondary, content.question->action, {}, this);
        connect(action_, &Button::clicked, this, [this, perform = content.question->perform] {
            if (onClose) onClose();
            perform();
        });
        buttons_->insertWidget(1, action_);
        setTabOrder(action_, ok_);
    }
    ok_->setText(content.question ? content.question->decline : tr("OK"));
    setAccessibleName(content.title);
    setAccessibleDescription(content.paragraphs.join(u' '));
    updateGeometry();
    update();
}

QSize MessageSheet::sizeHint() const {
    return {sheetWidth, rows_->heightForWidth(sheetWidth)};
}

void MessageSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    theme::drawBox(painter, rect(), theme::sheetRadius, theme::raised, theme::border);
    if (!icon_.isEmpty())
        icons::draw(painter, icon_, QRectF(padding, padding - 2, signSize, signSize), signSize, theme::attention);
}

void MessageSheet::focusInEvent(QFocusEvent*) {
    ok_->setFocus(Qt::OtherFocusReason);
}

} // namespace flowtide
