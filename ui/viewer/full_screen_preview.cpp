#include "ui/viewer/full_screen_preview.h"

#include "ui/controls/focus_ring.h"
#include "ui/key_names.h"
#include "ui/motion.h"
#include "ui/viewer/crop_overlay.h"
#include "ui/viewer/full_screen_controls.h"
#include "ui/viewer/picture_painter.h"
#include "ui/viewer/viewer_geometry.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr int fadeInMilliseconds = 120;
constexpr int fadeOutMilliseconds = 240;
constexpr double chipDistance = 24;

} // namespace

FullScreenPreview::FullScreenPreview(SessionHost& host, std::function<void(Command)> perform)
    : FullScreenPreview(host.model(), host.pictureFeed(), std::move(perform)) {}

FullScreenPreview::FullScreenPreview(FlowtideViewModel& model, PictureFeed& feed, std::function<void(Command)> perform)
    : model_(model)
    , feed_(feed)
    , controls_(new FullScreenControls(model, std::move(perform), this))
    , opacity_(new QGraphicsOpacityEffect(controls_)) {
    setWindowTitle(tr("Full-screen preview"));
    setAccessibleName(tr("Full-screen preview"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    controls_->setGraphicsEffect(opacity_);
    controls_->hide();
    controls_->onTouched = [this] { showControls(true); };
    new FocusRing(*this);
    fade_.setEasingCurve(QEasingCurve::OutCubic);
    connect(&fade_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        shown_ = value.toDouble();
        controls_->setVisible(shown_ > 0);
        opacity_->setOpacity(shown_);
        opacity_->setEnabled(shown_ < 1);
        update();
    });
    rest_.setSingleShot(true);
    rest_.setInterval(restMilliseconds);
    connect(&rest_, &QTimer::timeout, this, [this] {
        if (controls_->isHeld())
            rest_.start();
        else
            showControls(false);
    });
    connect(&feed_, &PictureFeed::changed, this, [this] { update(); });
    changes_ = model_.subscribe(
        properties({Property::clip, Property::scrubPosition, Property::zoomBlocks, Property::centerKeyframes,
                    Property::centerSmoothing, Property::isVerticalCropEnabled, Property::cropAspectRatio}),
        [this](const PropertySet& changed) {
            if (!isVisible()) return;
            if (!model_.clip()) return leave();
            if (changed != properties({Property::scrubPosition})) askForPictures();
            update();
        });
}

FullScreenPreview::~FullScreenPreview() {
    feed_.setRoom(*this, std::nullopt);
}

void FullScreenPreview::open(const QWidget& beside) {
    if (const QScreen* screen = beside.screen()) setGeometry(screen->geometry());
    pointer_.reset();
    showFullScreen();
    activateWindow();
    setFocus();
    askForPictures();
    showControls(true);
}

void FullScreenPreview::leave() {
    rest_.stop();
    fade_.stop();
    hide();
    feed_.setRoom(*this, std::nullopt);
}

void FullScreenPreview::showControls(bool areShown) {
    setCursor(areShown ? Qt::ArrowCursor : Qt::BlankCursor);
    if (areShown) rest_.start();
    const double target = areShown ? 1 : 0;
    if (fade_.state() == QAbstractAnimation::Running ? fade_.endValue().toDouble() == target : shown_ == target) return;
    fade_.stop();
    fade_.setDuration(motion::isReduced() ? 0 : areShown ? fadeInMilliseconds : fadeOutMilliseconds);
    fade_.setStartValue(shown_);
    fade_.setEndValue(target);
    fade_.start();
}

std::optional<FullScreenPreview::Frame> FullScreenPreview::frame() const {
    const auto& clip = model_.clip();
    if (!clip || clip->width < 1 || clip->height < 1) return std::nullopt;
    const QSize pane = (QSizeF(size()) * devicePixelRatioF()).toSize();
    const auto crop = CropOverlay::plan(model_);
    const double share = crop ? static_cast<double>(crop->width) / static_cast<double>(clip->width) : 1;
    const QSize seen = viewerGeometry::displayedSize(crop ? crop->width : clip->width, clip->height,
                                                     clip->metadata.sampleAspectRatio.seconds());
    const QRect place = viewerGeometry::pictureRect(pane, 0, seen, {});
    // Of a cropped clip the height decides, whatever lies beside the crop.
    const OutputSize box =
        crop ? OutputSize{std::int64_t{1} << 20, place.height()} : OutputSize{pane.width(), pane.height()};
    return Frame{place,
                 crop ? viewerGeometry::cropWindow(CropOverlay::travel(model_), share) : viewerGeometry::wholePicture,
                 box};
}

void FullScreenPreview::askForPictures() {
    const auto frame = this->frame();
    if (!frame || !isVisible()) return;
    feed_.setRoom(*this, PictureFeed::Room{frame->box, frame->box});
}

void FullScreenPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    const auto frame = this->frame();
    const auto shown = feed_.shown();
    if (frame && shown) {
        const double scale = devicePixelRatioF();
        const QRectF place(frame->place.left() / scale, frame->place.top() / scale, frame->place.width() / scale,
                           frame->place.height() / scale);
        const TimeMap& timeMap = model_.curve().timeMap();
        const bool isMoving = model_.transport().isPlaying() && shown->time;
        const OutputSeconds time = isMoving ? *shown->time : timeMap.outputTime({model_.playheadSeconds()});
        const QRectF zoomed =
            shown->isZoomed
                ? viewerGeometry::wholePicture
                : viewerGeometry::zoomWindow(ZoomEngine::stateAt(time, model_.zoom().zoomBlocks(), timeMap));
        picturePainter::draw(painter, place, shown->image, viewerGeometry::part(frame->crop, zoomed));
    }
    if (shown_ <= 0) return;
    painter.setOpacity(shown_);
    const std::vector<picturePainter::ChipPart> words{
        {keyNames::local(tr("Esc or ⌘F exits")), theme::Type::small, theme::text}};
    picturePainter::drawChip(painter, {width() - chipDistance - picturePainter::chipWidth(words), chipDistance}, words);
}

void FullScreenPreview::resizeEvent(QResizeEvent*) {
    controls_->setGeometry(0, height() - FullScreenControls::controlsHeight, width(),
                           FullScreenControls::controlsHeight);
    askForPictures();
}

void FullScreenPreview::closeEvent(QCloseEvent* event) {
    leave();
    event->ignore();
}

bool FullScreenPreview::event(QEvent* event) {
    if (event->type() == QEvent::MouseMove) {
        // Desktops report a pointer that has not moved when a window opens under it.
        const QPoint at = QCursor::pos();
        if (std::exchange(pointer_, at) != at) showControls(true);
    }
    return QWidget::event(event);
}

} // namespace flowtide
