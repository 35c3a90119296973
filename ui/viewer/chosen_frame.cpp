#include "ui/viewer/chosen_frame.h"

#include "ui/accessible_role.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/picture_feed.h"
#include "ui/viewer/viewer_geometry.h"

#include <QPainter>
#include <cmath>

namespace flowtide {

namespace {

constexpr QSize largestPicture{142, 112};
constexpr int gap = 8;
constexpr int lineHeight = 16;

} // namespace

ChosenFrame::ChosenFrame(FlowtideViewModel& model, QWidget* parent)
    : QWidget(parent)
    , model_(model) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleRole(*this, QAccessible::Graphic);
    changes_ = model_.subscribe(properties({Property::chosenSubject}), [this](const PropertySet&) { refresh(); });
    refresh();
}

void ChosenFrame::refresh() {
    const auto& chosen = model_.tracking().chosenSubject();
    setVisible(chosen && chosen->picture);
    picture_ = {};
    if (!chosen || !chosen->picture) return;
    const QImage whole = imageOf(chosen->picture);
    const QSize size = whole.size().scaled(largestPicture, Qt::KeepAspectRatio);
    picture_ = whole.scaled(size * devicePixelRatioF(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    picture_.setDevicePixelRatio(devicePixelRatioF());
    setAccessibleName(tr("Chosen frame") + QStringLiteral(" ") + valueText::timeCode(chosen->time));
    resize(largestPicture.width() + 2 * padding, size.height() + gap + 2 * lineHeight + 2 * padding);
    if (onResized) onResized();
    update();
}

void ChosenFrame::setOnPicture(bool isOnPicture) {
    if (isOnPicture_ == isOnPicture) return;
    isOnPicture_ = isOnPicture;
    update();
}

void ChosenFrame::paintEvent(QPaintEvent*) {
    const auto& chosen = model_.tracking().chosenSubject();
    if (!chosen || picture_.isNull()) return;
    QPainter painter(this);
    if (isOnPicture_) theme::drawBox(painter, rect(), theme::sheetRadius, theme::faded(theme::well, 0.8));
    const QRectF place(QPointF(padding, padding), picture_.deviceIndependentSize());
    painter.drawImage(place.topLeft(), picture_);
    if (chosen->box) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::white, 1.5));
        painter.drawRect(
            viewerGeometry::part(place, {chosen->box->x, chosen->box->y, chosen->box->width, chosen->box->height}));
    }
    QRectF line(padding, place.bottom() + gap, largestPicture.width(), lineHeight);
    theme::drawLine(painter, line, Qt::AlignLeft, theme::Type::small, theme::text2, tr("Chosen frame"));
    line.translate(0, lineHeight);
    theme::drawLine(painter, line, Qt::AlignLeft, theme::Type::code, theme::text, valueText::timeCode(chosen->time));
}

} // namespace flowtide
