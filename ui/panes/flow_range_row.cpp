#include "ui/panes/flow_range_row.h"

#include "ui/controls/focus_ring.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

namespace flowtide {

namespace {
constexpr double signWidth = 4;
constexpr double textLeft = FlowRangeRow::overhang + 14;
constexpr int switchRoom = 40;
constexpr int lineTop = 4;
constexpr int textLine = 16;
} // namespace

FlowRangeRow::FlowRangeRow(FlowtideViewModel& model, QWidget* parent)
    : QAbstractButton(parent)
    , model_(model) {
    setFixedHeight(rowHeight);
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, theme::controlRadius);
    setCursor(Qt::PointingHandCursor);
    setCheckable(true);
    switch_ = new Switch(tr("Optical Flow"), theme::flow, this);
    switch_->setCursor(Qt::ArrowCursor);
    progress_ = new ProgressBar(tr("Preview rendering"), theme::flow, this);
    progress_->setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(switch_, &Switch::clicked, this, [this](bool isOn) { model_.setOpticalFlow(isOn, state_.range.id); });
    connect(this, &FlowRangeRow::clicked, this, [this] {
        setChecked(state_.isSelected);
        model_.selectOpticalFlowRange(state_.isSelected ? std::nullopt : std::optional(state_.range.id));
    });
}

void FlowRangeRow::show(const FlowRangeState& state) {
    using Kind = FlowRangeState::Kind;
    state_ = state;
    setChecked(state.isSelected);
    switch_->setChecked(model_.flow().isSwitchedOn(state.range));
    switch_->setEnabled(state.canSwitch);
    progress_->setVisible(state.kind == Kind::rendering);
    progress_->setShare(state.share);
    const QString share =
        state.kind == Kind::rendering ? QStringLiteral(", ") + valueText::percent(state.share) : QString();
    setAccessibleName(QStringLiteral("%1, %2%3").arg(rangeText(), stateText(), share));
    switch_->setAccessibleName(tr("Optical Flow, %1").arg(rangeText()));
    QWidget::show();
    update();
}

QString FlowRangeRow::rangeText() const {
    return tr("%1–%2 s").arg(state_.range.start, 0, 'f', 2).arg(state_.range.end, 0, 'f', 2);
}

QString FlowRangeRow::stateText() const {
    switch (state_.kind) {
    case FlowRangeState::Kind::rendering:
        return tr("Preview rendering");
    case FlowRangeState::Kind::rendered:
        return tr("Preview rendered");
    case FlowRangeState::Kind::switchedOff:
        return tr("Original frames · Optical Flow off");
    case FlowRangeState::Kind::notRendered:
        break;
    }
    return tr("Preview not rendered");
}

void FlowRangeRow::resizeEvent(QResizeEvent*) {
    switch_->move(width() - overhang - switch_->width(), (rowHeight - switch_->height()) / 2);
    const int left = static_cast<int>(textLeft);
    progress_->setGeometry(left, rowHeight - 4, width() - left - overhang - switchRoom, 4);
}

void FlowRangeRow::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    const QColor rest = state_.isSelected ? control : faded(control, 0);
    drawBox(painter, rect(), controlRadius, hover_.color(rest, control, raised));
    const bool isOff = state_.kind == FlowRangeState::Kind::switchedOff;
    drawBox(painter, QRectF(overhang, lineTop + 2, signWidth, 28), 2, isOff ? edge : flow);
    const double right = width() - overhang - switchRoom;
    const QRectF first(textLeft, lineTop, right - textLeft, textLine);
    const bool isLive = model_.flow().frameInterpolation() == FrameInterpolation::opticalFlow;
    drawLine(painter, first, Qt::AlignLeft, Type::code, isLive ? theme::text : text3, rangeText());
    const QRectF second = first.translated(0, textLine);
    drawLine(painter, second, Qt::AlignLeft, Type::small, isLive ? text2 : text3, stateText());
    if (state_.kind == FlowRangeState::Kind::rendering)
        drawTabular(painter, second, Qt::AlignRight, Type::small, text2, valueText::percent(state_.share));
}

void FlowRangeRow::contextMenuEvent(QContextMenuEvent* event) {
    openMenu(event->globalPos());
}

void FlowRangeRow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        openMenu(mapToGlobal(QPoint(static_cast<int>(textLeft), rowHeight)));
    else
        QAbstractButton::keyPressEvent(event);
}

void FlowRangeRow::openMenu(const QPoint& place) {
    using Kind = FlowRangeState::Kind;
    const Uuid id = state_.range.id;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* render = menu->addAction(tr("Render this range"), this, [this, range = state_.range] {
        model_.renderSelectedPreview(SourceRange{range.start, range.end});
    });
    render->setEnabled(state_.kind == Kind::notRendered && state_.canSwitch &&
                       !model_.renders().render().isRendering());
    QAction* loop = menu->addAction(tr("Loop this range"));
    loop->setCheckable(true);
    loop->setChecked(state_.isSelected && model_.timeline().loopPreview());
    connect(loop, &QAction::triggered, this, [this, id](bool loops) {
        if (loops) model_.selectOpticalFlowRange(id);
        model_.setLoopPreview(loops);
    });
    menu->addSeparator();
    const bool isOn = model_.flow().isSwitchedOn(state_.range);
    QAction* toggle = menu->addAction(isOn ? tr("Use Original Frames") : tr("Use Optical Flow"), this,
                                      [this, id, isOn] { model_.setOpticalFlow(!isOn, id); });
    toggle->setEnabled(state_.canSwitch);
    menu->popup(place);
}

} // namespace flowtide
