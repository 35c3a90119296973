#include "ui/panes/field_pair.h"

namespace flowtide {

namespace {
constexpr int labelHeight = 16;
constexpr int labelGap = 4;
constexpr int fieldGap = 8;
constexpr int fieldHeight = 28;
} // namespace

FieldPair::FieldPair(const QString& leftLabel, Field* left, const QString& rightLabel, Field* right, QWidget* parent)
    : QWidget(parent)
    , leftLabel_(new LineLabel(theme::Type::small, theme::text2, leftLabel, this))
    , rightLabel_(new LineLabel(theme::Type::small, theme::text2, rightLabel, this))
    , sentence_(new LineLabel(theme::Type::small, theme::attention, {}, this))
    , left_(left)
    , right_(right) {
    sentence_->setElideMode(Qt::ElideRight);
    for (Field* field : {left_, right_}) {
        field->setParent(this);
        field->onRefused = [this](const std::optional<QString>& sentence) {
            sentence_->setText(sentence.value_or(QString()));
        };
    }
    setTabOrder(left_, right_);
    setFixedHeight(fieldsHeight + sentenceHeight);
}

void FieldPair::resizeEvent(QResizeEvent*) {
    const int fieldWidth = (width() - fieldGap) / 2;
    const int second = fieldWidth + fieldGap;
    leftLabel_->setGeometry(0, 0, fieldWidth, labelHeight);
    rightLabel_->setGeometry(second, 0, fieldWidth, labelHeight);
    left_->setGeometry(0, labelHeight + labelGap, fieldWidth, fieldHeight);
    right_->setGeometry(second, labelHeight + labelGap, fieldWidth, fieldHeight);
    sentence_->setGeometry(0, fieldsHeight, width(), sentenceHeight);
}

} // namespace flowtide
