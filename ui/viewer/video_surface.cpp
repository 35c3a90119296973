#include "ui/viewer/video_surface.h"

#include "ui/controls/focus_ring.h"
#include "ui/keys_owner.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/picture_painter.h"
#include "ui/viewer/surface_accessible.h"

#include <QKeyEvent>
#include <QLineF>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr double clickTolerance = 4;

PropertySet whatIsDrawn() {
    return properties({Property::clip,
                       Property::scrubPosition,
                       Property::keyframes,
                       Property::curveSmoothing,
                       Property::trimRange,
                       Property::zoomBlocks,
                       Property::selectedZoomBlockID,
                       Property::centerKeyframes,
                       Property::centerSmoothing,
                       Property::isVerticalCropEnabled,
                       Property::cropAspectRatio,
                       Property::lockCropCenter,
                       Property::isCropDragActive,
                       Property::inspectionScale,
                       Property::inspectionCenter,
                       Property::selectingSubject,
                       Property::subjectSelectionBuffer,
                       Property::isTracking,
                       Property::trackingPreview,
                       Property::renderedPreviews});
}

} // namespace

VideoSurface::VideoSurface(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , feed_(feed)
    , subject_(model)
    , target_(model)
    , crop_(model) {
    setFocusPolicy(Qt::StrongFocus);
    setKeysOwner(*this, KeysOwner::editor);
    setFocusRing(*this, 0);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Picture"));
    installSurfaceAccessible();
    connect(&feed_, &PictureFeed::changed, this, [this] { update(); });
    changes_ = model_.subscribe(whatIsDrawn(), [this](const PropertySet& changed) { refresh(changed); });
}

VideoSurface::~VideoSurface() {
    feed_.setRoom(*this, std::nullopt);
}

void VideoSurface::refresh(const PropertySet& changed) {
    const bool isChoosing = model_.tracking().selectingSubject();
    if (isChoosing && !wasChoosing_) chosenAt_ = model_.playheadSeconds();
    if (!isChoosing && wasChoosing_) subject_.forget();
    wasChoosing_ = isChoosing;
    // The box would be drawn on a frame that is no longer the playhead's.
    const PropertySet edits = properties(
        {Property::clip, Property::keyframes, Property::trimRange, Property::centerKeyframes, Property::zoomBlocks});
    if (isChoosing && ((changed & edits).any() || model_.playheadSeconds() != chosenAt_)) model_.cancelTracking();
    if (changed.test(static_cast<std::size_t>(Property::clip))) {
        magnification_.reset();
        release(true);
    }
    // While playing only what moves with the playhead needs more than the player's pictures.
    const bool isPlayheadAlone = changed == properties({Property::scrubPosition});
    const bool movesAlong = !model_.zoom().zoomBlocks().empty() || CropOverlay::plan(model_);
    askForPictures();
    if (!isPlayheadAlone || movesAlong) update();
}

QSize VideoSurface::deviceSize() const {
    return (QSizeF(size()) * devicePixelRatioF()).toSize();
}

int VideoSurface::deviceClearance() const {
    return static_cast<int>(std::lround(clearance * devicePixelRatioF()));
}

std::optional<QSize> VideoSurface::clipSize() const {
    const auto& clip = model_.clip();
    if (!clip || clip->width < 1 || clip->height < 1) return std::nullopt;
    return viewerGeometry::displayedSize(clip->width, clip->height, clip->metadata.sampleAspectRatio.seconds());
}

Inspection VideoSurface::inspection() const {
    const PicturePoint center = model_.timeline().inspectionCenter();
    return {model_.timeline().inspectionScale(), {center.x, center.y}};
}

PicturePlace VideoSurface::place() const {
    const auto clip = clipSize();
    if (!clip) return {};
    const QRect device = viewerGeometry::pictureRect(deviceSize(), deviceClearance(), *clip, inspection());
    const double scale = devicePixelRatioF();
    PicturePlace place;
    place.picture =
        QRectF(device.left() / scale, device.top() / scale, device.width() / scale, device.height() / scale);
    const bool isTracking = model_.tracking().selectingSubject() || model_.tracking().isTracking();
    if (const auto crop = CropOverlay::plan(model_); crop && !isTracking) {
        place.cropShare = static_cast<double>(crop->width) / static_cast<double>(model_.clip()->width);
        place.crop = viewerGeometry::part(place.picture,
                                          viewerGeometry::cropWindow(CropOverlay::travel(model_), place.cropShare));
    }
    return place;
}

void VideoSurface::askForPictures() {
    const auto clip = clipSize();
    if (!clip || !isVisible()) return;
    scale_ = devicePixelRatioF();
    const auto room = [&](double scale) {
        return viewerGeometry::pictureBox(deviceSize(), deviceClearance(), *clip, scale);
    };
    const double inspected = model_.timeline().inspectionScale();
    const ZoomBlock* zoom = ZoomBlockRules::blockAt(model_.zoom().zoomBlocks(), model_.playheadSeconds());
    const bool isRendered = model_.renders().previews().isShownAt({model_.playheadSeconds()});
    feed_.setRoom(*this,
                  PictureFeed::Room{room(inspected * (zoom && !isRendered ? zoom->amount : 1)), room(inspected)});
}

ZoomEngine::ZoomState VideoSurface::zoomOf(const ShownPicture& picture) const {
    if (picture.isZoomed || model_.zoom().zoomBlocks().empty()) return {};
    const TimeMap& timeMap = model_.curve().timeMap();
    const bool isMoving = model_.transport().isPlaying() && picture.time;
    const OutputSeconds time = isMoving ? *picture.time : timeMap.outputTime({model_.playheadSeconds()});
    return ZoomEngine::stateAt(time, model_.zoom().zoomBlocks(), timeMap);
}

void VideoSurface::paintPicture(QPainter& painter, const PicturePlace& place) const {
    using namespace viewerGeometry;
    if (model_.tracking().selectingSubject() && model_.tracking().subjectSelectionBuffer())
        return picturePainter::draw(painter, place.picture, imageOf(*model_.tracking().subjectSelectionBuffer()),
                                    wholePicture);
    if (const auto& followed = model_.tracking().trackingPreview(); followed && followed->picture)
        return picturePainter::draw(painter, place.picture, imageOf(followed->picture), wholePicture);
    const auto shown = feed_.shown();
    if (!shown) return;
    const QRectF zoomed = zoomWindow(zoomOf(*shown));
    const bool isZoomed = zoomed != wholePicture;
    if (!isZoomed || place.crop.isEmpty())
        return picturePainter::draw(painter, place.picture, shown->image, isZoomed ? zoomed : wholePicture);
    // An export crops first, and zooms what is left.
    picturePainter::draw(painter, place.picture, shown->image, wholePicture);
    const QRectF crop = theme::onPixels(painter, place.crop);
    const QRectF cropped(fractions(place.picture, crop.topLeft()), fractions(place.picture, crop.bottomRight()));
    picturePainter::draw(painter, crop, shown->image, part(cropped, zoomed));
}

void VideoSurface::paintEvent(QPaintEvent*) {
    // Another screen has other pixels.
    if (scale_ != devicePixelRatioF()) askForPictures();
    QPainter painter(this);
    painter.fillRect(rect(), theme::well);
    const PicturePlace place = this->place();
    if (place.picture.isEmpty()) return;
    paintPicture(painter, place);
    const bool isTracking = model_.tracking().selectingSubject() || model_.tracking().isTracking();
    painter.setClipRect(place.picture.intersected(rect()));
    if (!isTracking) {
        crop_.paint(painter, place);
        target_.paint(painter, place);
    }
    subject_.paint(painter, place);
}

void VideoSurface::resizeEvent(QResizeEvent*) {
    if (magnification_) magnify(magnification_);
    askForPictures();
}

void VideoSurface::showEvent(QShowEvent*) {
    askForPictures();
}

void VideoSurface::hideEvent(QHideEvent*) {
    feed_.setRoom(*this, std::nullopt);
    release(true);
}

void VideoSurface::magnify(std::optional<double> magnification) {
    const auto clip = clipSize();
    if (!clip) return;
    magnification_ = magnification;
    const double scale =
        magnification ? viewerGeometry::inspectionScale(deviceSize(), deviceClearance(), *clip, *magnification) : 1;
    const Inspection now =
        viewerGeometry::panned(deviceSize(), deviceClearance(), *clip, {scale, inspection().center}, {});
    model_.setInspection(scale, scale > 1 ? PicturePoint{now.center.x(), now.center.y()} : PicturePoint{});
}

bool VideoSurface::canMagnify(double magnification) const {
    const auto clip = clipSize();
    return clip && viewerGeometry::magnification(deviceSize(), deviceClearance(), *clip, 1) < magnification;
}

void VideoSurface::pan(QPointF travel) {
    const auto clip = clipSize();
    if (!clip || model_.timeline().inspectionScale() <= 1) return;
    const Inspection moved =
        viewerGeometry::panned(deviceSize(), deviceClearance(), *clip, inspection(), travel * devicePixelRatioF());
    model_.setInspection(moved.scale, {moved.center.x(), moved.center.y()});
}

PictureLayer* VideoSurface::layerAt(QPointF at) const {
    const PicturePlace place = this->place();
    if (place.picture.isEmpty()) return nullptr;
    const bool isTracking = model_.tracking().selectingSubject() || model_.tracking().isTracking();
    for (PictureLayer* layer : layers_)
        if ((!isTracking || layer == &subject_) && layer->takes(at, place)) return layer;
    return nullptr;
}

void VideoSurface::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    isPressed_ = true;
    isDragging_ = false;
    pressed_ = last_ = event->position();
    modifiers_ = event->modifiers();
    inspectionBefore_ = inspection();
    guard_.begin();
    held_ = layerAt(pressed_);
    showPointer(pressed_);
}

void VideoSurface::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (isPressed_ && !isDragging_ && QLineF(pressed_, at).length() >= clickTolerance) {
        isDragging_ = true;
        if (held_) held_->begin(pressed_, modifiers_, place());
        if (held_ == &subject_ && onDrawingBox) onDrawingBox(true);
    }
    if (isDragging_ && held_) {
        held_->drag(at, place());
        update();
    } else if (isDragging_) {
        pan(at - last_);
    }
    last_ = at;
    showPointer(at);
}

void VideoSurface::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    release(false);
    showPointer(event->position());
}

void VideoSurface::cancelDrag() {
    const bool isPan = isDragging_ && !held_;
    release(true);
    if (isPan)
        model_.setInspection(inspectionBefore_.scale, {inspectionBefore_.center.x(), inspectionBefore_.center.y()});
    showPointer(last_);
}

void VideoSurface::release(bool isCancelled) {
    guard_.end();
    PictureLayer* held = std::exchange(held_, nullptr);
    const bool wasDragging = std::exchange(isDragging_, false);
    isPressed_ = false;
    if (!held || !wasDragging) return;
    held->end(isCancelled);
    if (held == &subject_ && onDrawingBox) onDrawingBox(false);
    update();
}

void VideoSurface::leaveEvent(QEvent*) {
    if (onHint) onHint({});
}

void VideoSurface::showPointer(QPointF at) {
    const PicturePlace place = this->place();
    const PictureLayer* layer = held_ ? held_ : layerAt(at);
    // The picture beside the frame can be dragged too, but it is the frame that the hand is for.
    const bool isBeside = layer == &crop_ && !held_ && !place.crop.contains(at);
    setCursor(layer && !isBeside ? layer->cursor(isPressed_ && held_) : Qt::ArrowCursor);
    if (!onHint) return;
    if (place.crop.isEmpty() || !place.picture.contains(at)) return onHint({});
    onHint(model_.framing().lockCropCenter()
               ? tr("Lock center is on.")
               : tr("Drag the crop frame sideways to keyframe its position at the playhead"));
}

void VideoSurface::wheelEvent(QWheelEvent* event) {
    constexpr double pixelsPerStep = 48;
    constexpr double eighthsPerStep = 120;
    if (model_.timeline().inspectionScale() <= 1) return event->ignore();
    QPointF travel = event->pixelDelta();
    if (travel.isNull()) travel = QPointF(event->angleDelta()) / eighthsPerStep * pixelsPerStep;
    if (event->modifiers() & Qt::ShiftModifier && travel.x() == 0) travel = QPointF(travel.y(), 0);
    pan(travel);
}

void VideoSurface::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (modifiers || !subject_.start()) event->ignore();
        return;
    }
    const int x = (event->key() == Qt::Key_Right) - (event->key() == Qt::Key_Left);
    const int y = (event->key() == Qt::Key_Down) - (event->key() == Qt::Key_Up);
    const bool isShifted = modifiers & Qt::ShiftModifier;
    if (!(modifiers & Qt::AltModifier) || modifiers & Qt::ControlModifier || (!x && !y)) return event->ignore();
    const bool isTracking = model_.tracking().selectingSubject() || model_.tracking().isTracking();
    for (PictureLayer* layer : layers_)
        if ((!isTracking || layer == &subject_) && layer->nudge(x, y, isShifted, place())) {
            update();
            announceSurfaceValue(*this);
            return;
        }
    pan(QPointF(-x, -y) * clearance * (isShifted ? 10 : 1));
}

QString VideoSurface::spokenValue() const {
    QStringList parts;
    if (model_.clip()) parts << valueText::timeCode(model_.playheadSeconds());
    if (!place().crop.isEmpty()) parts << tr("Crop frame %1").arg(valueText::position(CropOverlay::travel(model_)));
    if (const ZoomBlock* block = ZoomTarget::block(model_)) {
        const ZoomEngine::FocalPoint focal = ZoomTarget::focal(model_, *block);
        parts << tr("Zoom target %1, %2").arg(valueText::percent(focal.x), valueText::percent(focal.y));
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace flowtide
