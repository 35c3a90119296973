#include "ui/viewer/comparison_view.h"

#include "ui/accessible_role.h"
#include "ui/controls/focus_ring.h"
#include "ui/keys_owner.h"
#include "ui/session_text.h"
#include "ui/theme.h"
#include "ui/value_text.h"
#include "ui/viewer/picture_painter.h"
#include "ui/viewer/viewer_geometry.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr int keyboardStep = 12;
constexpr int waitMilliseconds = 200;
constexpr int hintMilliseconds = 240;

QRectF logical(const QRect& device, double scale) {
    return {device.left() / scale, device.top() / scale, device.width() / scale, device.height() / scale};
}

} // namespace

ComparisonView::ComparisonView(FlowtideViewModel& model, PictureFeed& feed, QWidget* parent)
    : QWidget(parent)
    , model_(model)
    , feed_(feed)
    , hint_(
          hintMilliseconds, [this] { update(); }, 1) {
    setFocusPolicy(Qt::StrongFocus);
    setKeysOwner(*this, KeysOwner::editor);
    setFocusRing(*this, 0);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Comparison of original and retimed frames"));
    setAccessibleRole(*this, QAccessible::Graphic);
    setCursor(Qt::OpenHandCursor);
    hide();
    wait_.setSingleShot(true);
    wait_.setInterval(waitMilliseconds);
    connect(&wait_, &QTimer::timeout, this, [this] {
        isLate_ = true;
        update();
    });
    connect(&feed_, &PictureFeed::changed, this, [this] { update(); });
    changes_ = model_.subscribe(
        properties({Property::clip, Property::comparisonEnabled, Property::comparisonPair, Property::comparisonMessage,
                    Property::renderedPreviews, Property::zoomBlocks, Property::opticalFlowRanges,
                    Property::originalFrameSpans, Property::frameInterpolation}),
        [this](const PropertySet&) { refresh(); });
}

ComparisonView::~ComparisonView() {
    feed_.setRoom(*this, std::nullopt);
}

void ComparisonView::refresh() {
    const bool isShown = model_.comparison().comparisonEnabled();
    if (isShown != isVisibleTo(parentWidget())) {
        setVisible(isShown);
        if (!isShown) {
            pan_.reset();
            hint_.jumpTo(1);
        }
    }
    if (const auto times = model_.comparison().comparisonFrameTimes())
        setAccessibleDescription(
            tr("Original %1, retimed %2")
                .arg(valueText::timeCode(times->decoded.value), valueText::timeCode(times->output.value)));
    update();
}

std::optional<QSize> ComparisonView::clipSize() const {
    const auto& clip = model_.clip();
    if (!clip || clip->width < 1 || clip->height < 1) return std::nullopt;
    return viewerGeometry::displayedSize(clip->width, clip->height, clip->metadata.sampleAspectRatio.seconds());
}

ComparisonView::Panes ComparisonView::panes() const {
    const double scale = devicePixelRatioF();
    const auto device = [&](double length) { return static_cast<int>(std::lround(length * scale)); };
    const int left = device(clearance);
    const int width = std::max((device(this->width()) - 2 * left - device(paneGap)) / 2, 1);
    const int height = std::max(device(this->height()) - 2 * left, 1);
    return {QRect(left, left, width, height), QRect(left + width + device(paneGap), left, width, height)};
}

QPointF ComparisonView::pan() const {
    if (pan_) return *pan_;
    const auto& pair = model_.comparison().comparisonPair();
    return {pair ? pair->pan : 0.5, 0.5};
}

void ComparisonView::panBy(QPointF travel) {
    const auto clip = clipSize();
    if (!clip) return;
    const QPointF moved =
        viewerGeometry::pannedCover(panes().original.size(), *clip, pan(), travel * devicePixelRatioF());
    if (moved == pan()) return;
    pan_ = moved;
    hint_.moveTo(0);
    update();
}

void ComparisonView::nudge(int x, int y, bool isShifted) {
    panBy(QPointF(-x, -y) * keyboardStep * (isShifted ? 10 : 1));
}

void ComparisonView::askForPictures() {
    const auto clip = clipSize();
    if (!clip || !isVisible()) return;
    const OutputSize size = viewerGeometry::coveringBox(panes().original.size(), *clip);
    feed_.setRoom(*this, PictureFeed::Room{size, size});
    model_.setComparisonSize(size);
}

void ComparisonView::resizeEvent(QResizeEvent*) {
    askForPictures();
}

void ComparisonView::showEvent(QShowEvent*) {
    isLate_ = false;
    wait_.start();
    askForPictures();
}

void ComparisonView::hideEvent(QHideEvent*) {
    wait_.stop();
    dragged_.reset();
    guard_.end();
    feed_.setRoom(*this, std::nullopt);
}

void ComparisonView::drawPane(QPainter& painter, const QRect& pane, const QImage& image,
                              const ZoomEngine::ZoomState& zoom) const {
    const double scale = devicePixelRatioF();
    const QRect covering = viewerGeometry::coveringRect(pane.size(), *clipSize(), pan()).translated(pane.topLeft());
    painter.save();
    painter.setClipRect(logical(pane, scale));
    picturePainter::draw(painter, logical(covering, scale), image, viewerGeometry::zoomWindow(zoom));
    painter.restore();
}

void ComparisonView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::well);
    if (!clipSize()) return;
    const Panes panes = this->panes();
    const auto& pair = model_.comparison().comparisonPair();
    const auto retimed = feed_.shown();
    const auto zoom = [&](const OutputSeconds& time) {
        return ZoomEngine::stateAt(time, model_.zoom().zoomBlocks(), model_.curve().timeMap());
    };
    // Zoomed alike, whichever of them is so by itself.
    const OutputSeconds now = model_.curve().timeMap().outputTime({model_.playheadSeconds()});
    if (pair && pair->original) drawPane(painter, panes.original, imageOf(pair->original), zoom(pair->times.output));
    if (retimed)
        drawPane(painter, panes.retimed, retimed->image, retimed->isZoomed ? ZoomEngine::ZoomState{} : zoom(now));
    const double scale = devicePixelRatioF();
    drawWords(painter, logical(panes.original, scale), logical(panes.retimed, scale));
}

void ComparisonView::drawWords(QPainter& painter, const QRectF& original, const QRectF& retimed) {
    using namespace picturePainter;
    using theme::Type;
    const auto left = [&](double y, const std::vector<ChipPart>& parts) {
        drawChip(painter, {original.left() + chipMargin, y}, parts);
    };
    const double top = original.top() + chipMargin;
    const double bottom = original.bottom() - chipMargin - chipHeight;
    left(top, {{tr("Original"), Type::smallBold, theme::text}});
    const std::vector<ChipPart> name{{tr("Retimed"), Type::smallBold, theme::text}};
    drawChip(painter, {retimed.right() - chipMargin - chipWidth(name), top}, name);

    const Comparison& comparison = model_.comparison();
    if (const auto& message = comparison.comparisonMessage()) {
        const std::vector<ChipPart> words{{sessionText(*message), Type::small, theme::text}};
        const double x = original.center().x() - chipWidth(words, true) / 2;
        drawChip(painter, {std::max(x, original.left() + chipMargin), original.center().y() - chipHeight / 2}, words,
                 QStringLiteral("warning"));
    } else if (!comparison.comparisonPair() && isLate_) {
        left(bottom, {{tr("Loading the source frame…"), Type::small, theme::text}});
    }
    const auto times = comparison.comparisonFrameTimes();
    if (!times) return;
    drawDotChip(painter, {original.left() + chipMargin, bottom},
                {{tr("Source frame"), Type::small, theme::text},
                 {valueText::timeCode(times->decoded.value), Type::codeSmall, theme::text2}},
                theme::text2);
    const QString label = sessionText(comparison.comparisonDisplayState().label);
    const bool isFlow = !label.isEmpty() && OpticalFlowScope::contains(model_.renders().previews().flowRanges(),
                                                                       {model_.playheadSeconds()});
    const std::vector<ChipPart> parts{{label.isEmpty() ? tr("Output") : label, Type::small, theme::text},
                                      {valueText::timeCode(times->output.value), Type::codeSmall, theme::text2}};
    const double partsLeft = retimed.right() - chipMargin - chipWidth(parts, true);
    drawDotChip(painter, {partsLeft, bottom}, parts, isFlow ? theme::flow : theme::text2);
    if (hint_.value() <= 0) return;
    const std::vector<ChipPart> hint{{tr("Drag to pan both pictures"), Type::small, theme::text2}};
    const double hintLeft = (original.right() + retimed.left() - chipWidth(hint)) / 2;
    if (hintLeft + chipWidth(hint) > partsLeft) return;
    painter.setOpacity(hint_.value());
    drawChip(painter, {hintLeft, bottom}, hint);
}

void ComparisonView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragged_ = event->position();
    panBefore_ = pan_;
    guard_.begin();
    setCursor(Qt::ClosedHandCursor);
}

void ComparisonView::mouseMoveEvent(QMouseEvent* event) {
    if (!dragged_) return;
    panBy(event->position() - *std::exchange(dragged_, event->position()));
}

void ComparisonView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragged_.reset();
    guard_.end();
    setCursor(Qt::OpenHandCursor);
}

void ComparisonView::cancelDrag() {
    dragged_.reset();
    pan_ = panBefore_;
    setCursor(Qt::OpenHandCursor);
    update();
}

void ComparisonView::wheelEvent(QWheelEvent* event) {
    QPointF travel = event->pixelDelta();
    if (travel.isNull()) travel = QPointF(event->angleDelta()) * 48 / 120;
    if (travel.x() == 0) travel = QPointF(travel.y(), 0);
    panBy(travel);
}

void ComparisonView::keyPressEvent(QKeyEvent* event) {
    const int x = (event->key() == Qt::Key_Right) - (event->key() == Qt::Key_Left);
    const int y = (event->key() == Qt::Key_Down) - (event->key() == Qt::Key_Up);
    if (!(event->modifiers() & Qt::AltModifier) || (!x && !y)) return event->ignore();
    nudge(x, y, event->modifiers() & Qt::ShiftModifier);
}

} // namespace flowtide
