#include "ui/graph/flow_lane.h"

#include "ui/accessible_role.h"
#include "ui/graph/item_steps.h"
#include "ui/graph/timeline_layout.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainterPath>
#include <algorithm>

namespace flowtide {

namespace {

constexpr int laneTop = TimelineLayout::laneAir - TimelineLayout::groundBelowPlot;
constexpr int buttonSize = 24;
constexpr int buttonMiddle = 22; ///< from the right edge
constexpr double textRoom = 8;   ///< on each side of a text
constexpr double hatchStep = 6;
constexpr int progressMilliseconds = 250;

QPainterPath rounded(const QRectF& rect) {
    QPainterPath path;
    path.addRoundedRect(rect, theme::laneRadius, theme::laneRadius);
    return path;
}

void hatch(QPainter& painter, const QRectF& rect) {
    painter.save();
    painter.setClipRect(rect.adjusted(1, 1, -1, -1), Qt::IntersectClip);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::text3, 1));
    for (double x = rect.left() - rect.height(); x < rect.right(); x += hatchStep)
        painter.drawLine(QPointF(x, rect.bottom()), QPointF(x + rect.height(), rect.top()));
    painter.restore();
    theme::drawBox(painter, rect, theme::laneRadius, {}, theme::text3);
}

} // namespace

FlowLane::FlowLane(TimelineContext& context, QWidget* parent)
    : TimelineLane(context, laneTop, TimelineLayout::thinLane, parent) {
    takeFocus();
    setAccessibleName(tr("Optical Flow ranges"));
    render_ = new IconButton(QStringLiteral("render"), tr("Render"), {}, this, buttonSize);
    connect(render_, &QAbstractButton::clicked, this, &FlowLane::render);
    progressPause_.setSingleShot(true);
    progressPause_.setInterval(progressMilliseconds);
    connect(&progressPause_, &QTimer::timeout, this, [this] {
        if (isStale_) refresh();
    });
    changes_ = context.model().subscribe(
        properties({Property::clip, Property::opticalFlowRanges, Property::originalFrameSpans,
                    Property::frameInterpolation, Property::selectedOpticalFlowRangeID, Property::renderedPreviews,
                    Property::renderingPreviewRange, Property::trimRange, Property::keyframes, Property::isExporting,
                    Property::isRenderingAllRanges}),
        [this](const PropertySet&) { refresh(); });
    progress_ = context.model().subscribe(properties({Property::previewRenderProgress}), [this](const PropertySet&) {
        isStale_ = true;
        if (progressPause_.isActive()) return;
        refresh();
        progressPause_.start();
    });
    refresh();
}

void FlowLane::refresh() {
    isStale_ = false;
    std::vector<FlowLaneItem> items = flowLaneItems(context_.model());
    const FlowtideViewModel& model = context_.model();
    const auto& selected = model.flow().selectedOpticalFlowRangeID();
    const bool isMissing = std::any_of(items.begin(), items.end(), [&](const FlowLaneItem& item) {
        return item.isOn && !item.isRendered && (!selected || item.isSelected);
    });
    const bool isBusy = model.exporting().isExporting() || model.renders().render().isRendering() ||
                        model.renders().isRenderingAllRanges();
    render_->setEnabled(isMissing && !isBusy);
    render_->setVisible(!items.empty());
    const QString name = selected ? tr("Render this range") : tr("Render all ranges");
    setSpokenName(*render_, name);
    render_->setToolTip(name);
    update(); // the trim's lines too
    if (items == items_) return;
    items_ = std::move(items);
    tree_.changed();
}

void FlowLane::render() {
    if (context_.model().flow().selectedOpticalFlowRangeID())
        context_.model().renderSelectedPreview();
    else
        context_.model().renderAllRanges();
}

void FlowLane::resizeEvent(QResizeEvent*) {
    const int middle = laneTop + TimelineLayout::thinLane / 2;
    render_->setGeometry(width() - buttonMiddle - buttonSize / 2, middle - buttonSize / 2, buttonSize, buttonSize);
}

void FlowLane::paintItem(QPainter& painter, const FlowLaneItem& item) const {
    using namespace theme;
    QRectF box = stretch(item.range.lower, item.range.upper);
    if (box.isEmpty()) return;
    box = onPixels(painter, box);
    const double brighter = hovered_ == item.id ? 0.08 : 0;
    if (!item.isOn) {
        hatch(painter, box);
    } else if (item.isRendered) {
        drawBox(painter, box, laneRadius, flow);
    } else {
        drawBox(painter, box, laneRadius, faded(flow, 0.16 + brighter), faded(flow, 0.7));
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        const auto part = [&](double from, double to, QColor color) {
            QPainterPath path;
            path.addRect(stretch(from, to));
            painter.fillPath(path.intersected(rounded(box)), color);
        };
        for (const SourceRange& each : item.rendered)
            part(each.lower, each.upper, flow);
        if (item.rendering) {
            part(item.rendering->lower, item.rendering->upper, faded(flow, 0.32));
            part(item.rendering->lower, item.renderedUntil, flow);
        }
        painter.restore();
    }
    if (item.isSelected) {
        constexpr double ring = 1.5;
        constexpr double away = 1;
        drawBox(painter, box.adjusted(-away - ring, -away - ring, away + ring, away + ring), laneRadius + away + ring,
                {}, theme::text, ring);
    }
    const auto words = [&](const QString& sentence, const QRectF& solid) {
        if (textWidth(Type::smallBold, sentence) + 2 * textRoom <= solid.width())
            drawLine(painter, solid.adjusted(textRoom, 0, 0, 0), Qt::AlignLeft, Type::smallBold, well, sentence);
    };
    if (item.isRendered) words(tr("Rendered"), box);
    if (item.rendering) words(valueText::percent(item.share), stretch(item.rendering->lower, item.renderedUntil));
}

void FlowLane::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    paintGround(painter);
    paintSign(painter, QStringLiteral("optical-flow"), ground());
    for (const FlowLaneItem& item : items_)
        paintItem(painter, item);
    paintTrimLines(painter);
}

const FlowLaneItem* FlowLane::itemAt(QPointF place) const {
    const QRectF lane = ground();
    if (place.y() < lane.top() - 2 || place.y() > lane.bottom() + 2) return nullptr;
    for (const FlowLaneItem& item : items_) {
        const QRectF box = stretch(item.range.lower, item.range.upper);
        if (!box.isEmpty() && place.x() >= box.left() - 1 && place.x() <= box.right() + 1) return &item;
    }
    return nullptr;
}

void FlowLane::setHovered(const FlowLaneItem* item) {
    const std::optional<Uuid> id = item ? std::optional(item->id) : std::nullopt;
    if (id == hovered_) return;
    hovered_ = id;
    if (item)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
    update();
}

void FlowLane::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) return;
    const FlowLaneItem* item = itemAt(event->position());
    context_.model().selectOpticalFlowRange(item ? std::optional(item->id) : std::nullopt);
}

void FlowLane::mouseMoveEvent(QMouseEvent* event) {
    setHovered(itemAt(event->position()));
}

void FlowLane::leaveEvent(QEvent*) {
    setHovered(nullptr);
}

void FlowLane::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKeys = event->reason() == QContextMenuEvent::Keyboard;
    const FlowLaneItem* item = isByKeys ? selected() : itemAt(event->pos());
    if (!item) return;
    const QRectF box = stretch(item->range.lower, item->range.upper);
    openMenu(*item, isByKeys ? mapToGlobal(box.bottomLeft().toPoint()) : event->globalPos());
}

void FlowLane::openMenu(const FlowLaneItem& item, QPoint globalPlace) {
    FlowtideViewModel& model = context_.model();
    model.selectOpticalFlowRange(item.id);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool usesFlow = model.flow().frameInterpolation() == FrameInterpolation::opticalFlow;
    menu->addAction(tr("Render this range"), this, [&model] { model.renderSelectedPreview(); })
        ->setEnabled(item.isOn && !item.isRendered && !model.exporting().isExporting() &&
                     model.renders().render().canStart(item.range));
    QAction* loop = menu->addAction(tr("Loop this range"), this,
                                    [&model] { model.setLoopPreview(!model.timeline().loopPreview()); });
    loop->setCheckable(true);
    loop->setChecked(model.timeline().loopPreview());
    menu->addAction(item.isOn || !usesFlow ? tr("Use Original Frames") : tr("Use Optical Flow"), this,
                    [&model, id = item.id, enabled = !item.isOn] { model.setOpticalFlow(enabled, id); })
        ->setEnabled(usesFlow && !model.exporting().isExporting());
    menu->popup(globalPlace);
}

const FlowLaneItem* FlowLane::selected() const {
    const auto found = std::find_if(items_.begin(), items_.end(), [](const auto& item) { return item.isSelected; });
    return found == items_.end() ? nullptr : &*found;
}

void FlowLane::keyPressEvent(QKeyEvent* event) {
    if (const int step = itemStep(*event)) {
        std::vector<double> starts;
        for (const FlowLaneItem& item : items_)
            starts.push_back(item.range.lower);
        const FlowLaneItem* from = selected();
        const auto at = from ? std::optional(static_cast<std::size_t>(from - items_.data())) : std::nullopt;
        if (const auto to = steppedItem(starts, at, context_.model().playheadSeconds(), step))
            pressItem(items_[*to].id);
        return;
    }
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !(event->modifiers() & ~Qt::KeypadModifier) && render_->isEnabled()) return render();
    event->ignore();
}

void FlowLane::focusInEvent(QFocusEvent*) {
    tree_.focused();
}

std::vector<Uuid> FlowLane::itemIds() const {
    std::vector<Uuid> ids;
    for (const FlowLaneItem& item : items_)
        ids.push_back(item.id);
    return ids;
}

std::optional<AccessibleItem> FlowLane::accessibleItem(const Uuid& id, std::size_t index) const {
    if (index >= items_.size() || items_[index].id != id) return {};
    const FlowLaneItem& item = items_[index];
    const QString state = !item.isOn        ? tr("original frames")
                          : item.isRendered ? tr("rendered")
                          : item.rendering  ? tr("rendering")
                                            : tr("not rendered");
    AccessibleItem told;
    told.name = tr("Optical Flow range %1–%2 seconds, %3")
                    .arg(item.range.lower, 0, 'f', 2)
                    .arg(item.range.upper, 0, 'f', 2)
                    .arg(state);
    told.place = stretch(item.range.lower, item.range.upper);
    told.isSelected = item.isSelected;
    return told;
}

std::optional<Uuid> FlowLane::currentItem() const {
    const FlowLaneItem* item = selected();
    return item ? std::optional(item->id) : std::nullopt;
}

std::optional<Uuid> FlowLane::itemUnder(QPointF place) const {
    const FlowLaneItem* item = itemAt(place);
    return item ? std::optional(item->id) : std::nullopt;
}

QString FlowLane::itemSummary() const {
    return items_.empty() ? tr("The curve never runs slow enough to need new frames.")
                          : tr("%1 ranges").arg(items_.size());
}

void FlowLane::pressItem(const Uuid& id) {
    for (const FlowLaneItem& item : items_)
        if (item.id == id) context_.reveal(item.range.lower);
    context_.model().selectOpticalFlowRange(id);
}

} // namespace flowtide
