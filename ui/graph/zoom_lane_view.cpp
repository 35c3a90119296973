#include "ui/graph/zoom_lane_view.h"

#include "core/zoom_engine.h"
#include "ui/graph/curve_graph_geometry.h"
#include "ui/graph/item_steps.h"
#include "ui/graph/timeline_layout.h"
#include "ui/key_names.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide {

namespace {

constexpr int buttonSize = 24;
constexpr int buttonMiddle = 22;     ///< from the right edge
constexpr double narrowestText = 40; ///< pixels of a block
constexpr double rampTop = 7;        ///< of the full zoom, below the block's top
constexpr double gripWidth = 2;
constexpr double gripHeight = 12;
constexpr double gripInset = 4;
constexpr double ringWidth = 1.5;
constexpr double ringDistance = 1;
constexpr double dotSize = 3;
constexpr int tenfold = 10;
constexpr double amountStep = 0.1;

} // namespace

ZoomLaneView::ZoomLaneView(TimelineContext& context, QWidget* parent)
    : TimelineLane(context, overlap, TimelineLayout::zoomHeight, parent) {
    takeFocus();
    setAccessibleName(tr("Zoom blocks"));
    add_ = new IconButton(QStringLiteral("plus"), tr("Add zoom at playhead"), {}, this, buttonSize);
    connect(add_, &QAbstractButton::clicked, this, [this] { context_.model().addOrSelectZoomBlock(); });
    changes_ = context.model().subscribe(
        properties({Property::clip, Property::zoomBlocks, Property::selectedZoomBlockID, Property::keyframes,
                    Property::curveSmoothing, Property::trimRange, Property::scrubPosition}),
        [this](const PropertySet& changed) {
            if (changed.test(static_cast<std::size_t>(Property::clip))) {
                letGo();
                endEdit();
            }
            PropertySet others = changed;
            others.reset(static_cast<std::size_t>(Property::scrubPosition));
            refresh();
            if (others.none()) return;
            tree_.changed();
            update();
        });
    refresh();
}

ZoomLaneView::~ZoomLaneView() {
    endEdit();
}

void ZoomLaneView::refresh() {
    const bool hasRoom = context_.model().canAddOrSelectZoomBlock();
    add_->setEnabled(hasRoom);
    add_->setToolTip(hasRoom ? tr("Add zoom at playhead (Z)") : tr("No room for 0.25 s here."));
}

const ZoomBlock* ZoomLaneView::selected() const {
    const ZoomLane& lane = context_.model().zoom();
    return lane.selectedZoomBlockID() ? lane.block(*lane.selectedZoomBlockID()) : nullptr;
}

void ZoomLaneView::resizeEvent(QResizeEvent*) {
    add_->setGeometry(width() - buttonMiddle - buttonSize / 2, (height() - buttonSize) / 2, buttonSize, buttonSize);
}

void ZoomLaneView::paintRamp(QPainter& painter, const ZoomBlock& block, const QRectF& box) const {
    const TimeAxis& axis = context_.axis();
    const TimeMap& map = context_.model().curve().timeMap();
    const double from = map.outputTime({block.startTime}).value;
    const double length = map.outputTime({block.endTime}).value - from;
    if (length <= 0) return;
    const double ramp = ZoomEngine::rampFraction(block.rampDuration, length, block.mode);
    const double base = box.bottom() - 1;
    const double rise = base - box.top() - rampTop;
    QList<QLineF> line;
    QPointF before;
    for (double x = box.left();; x = std::min(x + 1, box.right())) {
        const double progress = (map.outputTime({axis.timeAt(x)}).value - from) / length;
        const double zoomed = (ZoomEngine::scale(progress, block, ramp) - 1) / (block.amount - 1);
        const QPointF place(x, base - zoomed * rise);
        if (x > box.left()) {
            line.append(QLineF(before, place));
            const double top = (before.y() + place.y()) / 2;
            const QRectF column = theme::onPixels(painter, QRectF(before.x(), top, x - before.x(), base - top));
            painter.fillRect(column, theme::faded(theme::zoom, 0.3));
        }
        before = place;
        if (x >= box.right()) break;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::zoom, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLines(line);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

/// Its amount; what a drag changes while it goes on.
QString ZoomLaneView::words(const ZoomBlock& block) const {
    if (!isDrag_ || !held_ || held_->block != block.id) return valueText::speed(block.amount);
    if (held_->part == ZoomPart::body) return valueText::timeCode(block.startTime);
    return tr("%1 s").arg(block.endTime - block.startTime, 0, 'f', 2);
}

void ZoomLaneView::paintBlock(QPainter& painter, const ZoomBlock& block) const {
    using namespace theme;
    QRectF box = stretch(block.startTime, block.endTime);
    if (box.isEmpty()) return;
    box = onPixels(painter, box);
    const bool isHot = (hovered_ && hovered_->block == block.id) || (held_ && held_->block == block.id);
    drawBox(painter, box, laneRadius, faded(theme::zoom, isHot ? 0.22 : 0.14), faded(theme::zoom, isHot ? 0.8 : 0.55));
    painter.save();
    painter.setClipRect(box.adjusted(1, 1, -1, -1), Qt::IntersectClip);
    paintRamp(painter, block, box);
    painter.restore();
    if (isHot && box.width() > 2 * (gripInset + gripWidth))
        for (const double x : {box.left() + gripInset, box.right() - gripInset - gripWidth})
            painter.fillRect(onPixels(painter, QRectF(x, box.center().y() - gripHeight / 2, gripWidth, gripHeight)),
                             theme::text);
    const QString value = words(block);
    if (box.width() >= std::max(narrowestText, textWidth(Type::smallBold, value)))
        drawLine(painter, box, Qt::AlignHCenter, Type::smallBold, theme::text, value);
    const TimeMap& map = context_.model().curve().timeMap();
    const double from = map.outputTime({block.startTime}).value;
    const double length = map.outputTime({block.endTime}).value - from;
    for (const ZoomFocalKeyframe& keyframe : block.focalKeyframes) {
        const double seconds = map.sourceTime(OutputSeconds{from + keyframe.progress * length}).value;
        if (!context_.axis().shows(seconds)) continue;
        const double x = context_.axis().xOf(seconds);
        drawBox(painter, QRectF(x - dotSize / 2, box.bottom() - dotSize, dotSize, dotSize), dotSize / 2, theme::zoom);
    }
    if (context_.model().zoom().selectedZoomBlockID() == block.id) {
        constexpr double out = ringDistance + ringWidth;
        drawBox(painter, box.adjusted(-out, -out, out, out), laneRadius + out, {}, theme::text, ringWidth);
    }
}

void ZoomLaneView::paintDraft(QPainter& painter) const {
    if (!draft_) return;
    const QRectF box = stretch(draft_->lower, draft_->upper);
    if (box.isEmpty()) return;
    const bool isLongEnough = draft_->upper - draft_->lower >= ZoomBlockRules::shortestBlock;
    const QColor color = isLongEnough ? theme::zoom : theme::text3;
    theme::drawBox(painter, box, theme::laneRadius, theme::faded(color, 0.14));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::faded(color, 0.8), 1, Qt::DashLine));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), theme::laneRadius, theme::laneRadius);
    painter.restore();
    if (box.width() >= narrowestText)
        theme::drawLine(painter, box, Qt::AlignHCenter, theme::Type::smallBold, theme::text,
                        tr("%1 s").arg(draft_->upper - draft_->lower, 0, 'f', 2));
}

void ZoomLaneView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    paintGround(painter);
    paintSign(painter, QStringLiteral("zoom-block"), ground());
    for (const ZoomBlock& block : context_.model().zoom().zoomBlocks())
        paintBlock(painter, block);
    paintDraft(painter);
}

std::optional<ZoomHit> ZoomLaneView::hitAt(QPointF place) const {
    if (!ground().contains(place)) return {};
    return zoomHit(place.x(), context_.model().zoom().zoomBlocks(), context_.axis());
}

void ZoomLaneView::setHovered(std::optional<ZoomHit> hit) {
    if (hit == std::exchange(hovered_, hit)) return;
    update();
}

void ZoomLaneView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !context_.model().clip()) return;
    endEdit();
    isDrag_ = false;
    selectedBefore_ = context_.model().zoom().selectedZoomBlockID();
    guard_.begin();
    pressedX_ = event->position().x();
    held_ = hitAt(event->position());
    if (held_) {
        context_.model().selectZoomBlock(held_->block);
        heldBlock_ = *context_.model().zoom().block(held_->block);
        setCursor(held_->part == ZoomPart::body ? Qt::ClosedHandCursor : Qt::SplitHCursor);
    } else if (ground().contains(event->position())) {
        drawnFrom_ = context_.timeAt(pressedX_);
    }
}

void ZoomLaneView::mouseMoveEvent(QMouseEvent* event) {
    const double x = event->position().x();
    if (held_ || drawnFrom_) {
        if (!isDrag_ && std::abs(x - pressedX_) < graphSettings::clickMovementTolerance) return;
        isDrag_ = true;
        return dragTo(x);
    }
    const auto hit = hitAt(event->position());
    setHovered(hit);
    const bool isBlockSelected = hit && context_.model().zoom().selectedZoomBlockID() == hit->block;
    context_.setHint(isBlockSelected ? keyNames::local(tr("Drag the target on the video to set the focal point — "
                                                          "⌥-drag to keyframe motion at the playhead."))
                                     : QString());
    if (hit)
        setCursor(hit->part == ZoomPart::body ? Qt::OpenHandCursor : Qt::SplitHCursor);
    else if (ground().contains(event->position()))
        setCursor(Qt::CrossCursor);
    else
        unsetCursor();
}

void ZoomLaneView::dragTo(double x) {
    FlowtideViewModel& model = context_.model();
    if (drawnFrom_) {
        const double to = context_.timeAt(x);
        draft_ = SourceRange{std::min(*drawnFrom_, to), std::max(*drawnFrom_, to)};
        return update();
    }
    beginEdit();
    const double moved = (x - pressedX_) / context_.axis().pixelsPerSecond();
    if (held_->part == ZoomPart::body) return model.moveZoomBlock(held_->block, heldBlock_.startTime + moved);
    ZoomBlock block = heldBlock_;
    if (held_->part == ZoomPart::startEdge)
        block.startTime = std::min(block.startTime + moved, block.endTime - ZoomBlockRules::shortestBlock);
    else
        block.endTime = std::max(block.endTime + moved, block.startTime + ZoomBlockRules::shortestBlock);
    model.updateZoomBlock(block);
}

void ZoomLaneView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    FlowtideViewModel& model = context_.model();
    if (drawnFrom_ && !isDrag_) model.selectZoomBlock({});
    if (draft_ && draft_->upper - draft_->lower >= ZoomBlockRules::shortestBlock) model.addZoomBlock(*draft_);
    letGo();
    endEdit();
    setHovered(hitAt(event->position()));
}

void ZoomLaneView::letGo() {
    guard_.end();
    isDrag_ = false;
    draft_.reset();
    drawnFrom_.reset();
    held_.reset();
    update();
}

void ZoomLaneView::cancelDrag() {
    if (std::exchange(isEdit_, false)) context_.model().cancelCurveEdit();
    context_.model().selectZoomBlock(selectedBefore_);
    letGo();
}

void ZoomLaneView::leaveEvent(QEvent*) {
    setHovered({});
    context_.setHint({});
}

void ZoomLaneView::beginEdit() {
    if (!std::exchange(isEdit_, true)) context_.model().beginCurveEdit();
}

void ZoomLaneView::endEdit() {
    if (std::exchange(isEdit_, false)) context_.model().endCurveEdit();
}

void ZoomLaneView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKeys = event->reason() == QContextMenuEvent::Keyboard;
    const auto id = isByKeys ? currentItem() : itemUnder(event->pos());
    if (!id) return;
    FlowtideViewModel& model = context_.model();
    model.selectZoomBlock(id);
    const ZoomBlock& block = *model.zoom().block(*id);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Remove focal keyframes"), this, [&model, id = *id] { model.removeFocalKeyframes(id); })
        ->setEnabled(!block.focalKeyframes.empty());
    menu->addSeparator();
    menu->addAction(tr("Delete this zoom block") + u'\t' + keyNames::local(QStringLiteral("⌫")), this,
                    [&model, id = *id] { model.removeZoomBlock(id); });
    const QPointF below = stretch(block.startTime, block.endTime).bottomLeft();
    menu->popup(isByKeys ? mapToGlobal(below.toPoint()) : event->globalPos());
}

void ZoomLaneView::keyPressEvent(QKeyEvent* event) {
    if (const int step = itemStep(*event)) {
        const auto& blocks = context_.model().zoom().zoomBlocks();
        std::vector<double> starts;
        for (const ZoomBlock& each : blocks)
            starts.push_back(each.startTime);
        const auto at = selected() ? std::optional(static_cast<std::size_t>(selected() - blocks.data())) : std::nullopt;
        const auto to = steppedItem(starts, at, context_.model().playheadSeconds(), step);
        if (to) pressItem(Uuid(blocks[*to].id));
        return;
    }
    const ZoomBlock* block = selected();
    const auto& clip = context_.model().clip();
    if (!block || !clip || !(event->modifiers() & Qt::AltModifier)) return event->ignore();
    const double step = clip->frameDuration.seconds() * (event->modifiers() & Qt::ShiftModifier ? tenfold : 1);
    ZoomBlock changed = *block;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        beginEdit();
        return context_.model().moveZoomBlock(changed.id,
                                              changed.startTime + (event->key() == Qt::Key_Left ? -step : step));
    case Qt::Key_Up:
    case Qt::Key_Down:
        beginEdit();
        changed.endTime = std::max(changed.endTime + (event->key() == Qt::Key_Down ? -step : step),
                                   changed.startTime + ZoomBlockRules::shortestBlock);
        return context_.model().updateZoomBlock(changed);
    default:
        event->ignore();
    }
}

void ZoomLaneView::keyReleaseEvent(QKeyEvent* event) {
    if (!event->isAutoRepeat() && !held_) endEdit();
    event->ignore();
}

void ZoomLaneView::focusInEvent(QFocusEvent*) {
    tree_.focused();
}

void ZoomLaneView::focusOutEvent(QFocusEvent*) {
    if (!held_) endEdit();
}

std::vector<Uuid> ZoomLaneView::itemIds() const {
    std::vector<Uuid> ids;
    for (const ZoomBlock& block : context_.model().zoom().zoomBlocks())
        ids.push_back(block.id);
    return ids;
}

std::optional<AccessibleItem> ZoomLaneView::accessibleItem(const Uuid& id, std::size_t) const {
    const ZoomBlock* block = context_.model().zoom().block(id);
    if (!block) return {};
    AccessibleItem item;
    item.name = tr("Zoom block %1–%2 seconds, %3")
                    .arg(block->startTime, 0, 'f', 2)
                    .arg(block->endTime, 0, 'f', 2)
                    .arg(valueText::speed(block->amount));
    item.place = stretch(block->startTime, block->endTime);
    item.isSelected = currentItem() == id;
    item.value = {block->amount, lowestZoomAmount, highestZoomAmount, amountStep};
    return item;
}

std::optional<Uuid> ZoomLaneView::currentItem() const {
    return context_.model().zoom().selectedZoomBlockID();
}

std::optional<Uuid> ZoomLaneView::itemUnder(QPointF place) const {
    const auto hit = hitAt(place);
    return hit ? std::optional(hit->block) : std::nullopt;
}

QString ZoomLaneView::itemSummary() const {
    const auto current = currentItem();
    const auto item = current ? accessibleItem(*current, 0) : std::nullopt;
    return item ? item->name : tr("No zoom block selected.");
}

void ZoomLaneView::pressItem(const Uuid& id) {
    FlowtideViewModel& model = context_.model();
    if (const ZoomBlock* block = model.zoom().block(id)) context_.reveal(block->startTime);
    model.selectZoomBlock(id);
}

void ZoomLaneView::setItemValue(const Uuid& id, double value) {
    const ZoomBlock* block = context_.model().zoom().block(id);
    if (!block) return;
    ZoomBlock changed = *block;
    changed.amount = value;
    context_.model().updateZoomBlock(changed);
}

} // namespace flowtide
