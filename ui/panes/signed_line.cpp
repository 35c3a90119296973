#include "ui/panes/signed_line.h"

#include "ui/icons.h"

#include <QPainter>
#include <utility>

namespace flowtide {

namespace {
constexpr int lineHeight = 20;
constexpr int signSize = 16;
} // namespace

SignedLine::SignedLine(QString icon, QColor color, const QString& text, QWidget* parent)
    : QWidget(parent)
    , icon_(std::move(icon))
    , color_(color)
    , words_(new LineLabel(theme::Type::body, theme::text, text, this)) {
    setFixedHeight(lineHeight);
}

void SignedLine::resizeEvent(QResizeEvent*) {
    words_->setGeometry(textLeft, 0, width() - textLeft, height());
}

void SignedLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    icons::draw(painter, icon_, QRectF(0, 0, signSize, height()), signSize, color_);
}

} // namespace flowtide
