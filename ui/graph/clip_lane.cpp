#include "ui/graph/clip_lane.h"

#include "ui/accessible_role.h"
#include "ui/graph/timeline_layout.h"
#include "ui/theme.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <algorithm>

namespace flowtide {

namespace {
constexpr double frameWidth = 2;
constexpr double outsideOpacity = 0.72;
} // namespace

ClipLane::ClipLane(TimelineContext& context, QWidget* parent)
    : TimelineLane(context, 0, TimelineLayout::filmHeight + TimelineLayout::soundHeight, parent)
    , film_(context, [this] { update(); })
    , sound_(context, [this] { update(); })
    , start_(new TrimHandle(context, TrimEnd::start, this))
    , end_(new TrimHandle(context, TrimEnd::end, this)) {
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(tr("Clip"));
    connect(&context, &TimelineContext::axisChanged, this, &ClipLane::placeHandles);
    changes_ = context.model().subscribe(properties({Property::clip, Property::trimRange}),
                                         [this](const PropertySet& changed) {
                                             if (changed.test(static_cast<std::size_t>(Property::clip))) {
                                                 film_.reset();
                                                 start_->letGo();
                                                 end_->letGo();
                                             }
                                             placeHandles();
                                             update();
                                         });
    placeHandles();
}

void ClipLane::showRows(bool film, bool sound) {
    showsFilm_ = film;
    showsSound_ = sound;
}

void ClipLane::resizeEvent(QResizeEvent*) {
    setGround(0, height());
    placeHandles();
}

void ClipLane::placeHandles() {
    start_->place(0, height());
    end_->place(0, height());
}

void ClipLane::paintOutside(QPainter& painter) const {
    const QColor dim = theme::faded(theme::well, outsideOpacity);
    for (const QRectF& outside :
         {stretch(0, context_.trim().lower), stretch(context_.trim().upper, context_.duration())})
        if (!outside.isEmpty()) painter.fillRect(theme::onPixels(painter, outside), dim);
}

void ClipLane::paintFrame(QPainter& painter) const {
    if (!isTrimmedAtStart() && !isTrimmedAtEnd()) return;
    const QRectF kept = stretch(context_.trim().lower, context_.trim().upper);
    if (kept.isEmpty()) return;
    const QRectF frame = theme::onPixels(painter, kept);
    painter.fillRect(QRectF(frame.left(), frame.top(), frame.width(), frameWidth), theme::trim);
    painter.fillRect(QRectF(frame.left(), frame.bottom() - frameWidth, frame.width(), frameWidth), theme::trim);
}

void ClipLane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    paintGround(painter);
    const QRectF lane = ground();
    const QRectF film(lane.topLeft(), QSizeF(lane.width(), TimelineLayout::filmHeight));
    const QRectF sound(lane.left(), film.bottom(), lane.width(), TimelineLayout::soundHeight);
    if (showsFilm_) {
        film_.paint(painter, film);
        paintSign(painter, QStringLiteral("clip"), film);
    }
    if (showsSound_) {
        sound_.paint(painter, sound.adjusted(0, 2, 0, -frameWidth));
        paintSign(painter, QStringLiteral("waveform"), sound);
    }
    if (!showsFilm_) {
        const QRectF kept = stretch(context_.trim().lower, context_.trim().upper);
        painter.fillRect(theme::onPixels(painter, kept), theme::controlHi);
    }
    paintOutside(painter);
    paintFrame(painter);
}

void ClipLane::mousePressEvent(QMouseEvent* event) {
    scrub_.press(*event);
}

void ClipLane::mouseMoveEvent(QMouseEvent* event) {
    scrub_.move(*event);
}

void ClipLane::mouseReleaseEvent(QMouseEvent* event) {
    scrub_.release(*event);
}

void ClipLane::contextMenuEvent(QContextMenuEvent* event) {
    FlowtideViewModel& model = context_.model();
    if (!model.clip()) return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Set trim start to the playhead") + QStringLiteral("\tQ"), this,
                    [&model] { model.applyTrimRange(model.playheadSeconds(), model.curve().trimRange().upper); });
    menu->addAction(tr("Set trim end to the playhead") + QStringLiteral("\tW"), this,
                    [&model] { model.applyTrimRange(model.curve().trimRange().lower, model.playheadSeconds()); });
    menu->addAction(tr("Reset trim"), this, [&model] { model.resetTrimRange(); })
        ->setEnabled(isTrimmedAtStart() || isTrimmedAtEnd());
    menu->popup(event->globalPos());
}

} // namespace flowtide
