#include "ui/panes/zoom_section.h"

#include "core/zoom_engine.h"
#include "ui/key_names.h"
#include "ui/panes/value_formats.h"
#include "ui/value_text.h"

#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide {

namespace {
constexpr std::array modes{ZoomMode::inOut, ZoomMode::zoomIn, ZoomMode::zoomOut, ZoomMode::constant};
constexpr double amountSteps = 10; ///< of a slider, for each whole factor
constexpr double rampSteps = 20;   ///< of a slider, for each second

int stepOf(double value, double steps) {
    return static_cast<int>(std::lround(value * steps));
}

QVBoxLayout* column(QWidget* widget) {
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}
} // namespace

ZoomSection::ZoomSection(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model) {
    auto* section = new InspectorSection(tr("Zoom"), this);
    remove_ = new IconButton(QStringLiteral("trash"), tr("Delete this zoom block"),
                             keyNames::local(tr("Delete this zoom block (⌫)")), section, 24);
    connect(remove_, &IconButton::clicked, this, [this] {
        if (const auto id = model_.zoom().selectedZoomBlockID()) model_.removeZoomBlock(*id);
    });
    section->addAction(remove_, 4);
    place_ = new LineLabel(theme::Type::body, theme::text2, {}, section);
    section->addAction(place_, 0);
    empty_ = makeEmpty();
    block_ = makeBlock();
    section->add(empty_);
    section->add(block_);
    column(this)->addWidget(section);
    changes_ = model_.subscribe(properties({Property::clip, Property::zoomBlocks, Property::selectedZoomBlockID,
                                            Property::scrubPosition, Property::trimRange, Property::keyframes}),
                                [this](const PropertySet& changed) {
                                    if (changed == properties({Property::scrubPosition}))
                                        refreshFocal();
                                    else
                                        refresh();
                                });
    refresh();
}

QWidget* ZoomSection::makeEmpty() {
    auto* box = new QWidget(this);
    auto* rows = column(box);
    rows->addWidget(new Paragraph(theme::Type::small, theme::text2, tr("No zoom block selected."), box));
    rows->addSpacing(8);
    add_ = new Button(ButtonKind::secondary, tr("Add zoom at playhead"), QStringLiteral("zoom-block"), box);
    connect(add_, &Button::clicked, this, [this] { model_.addOrSelectZoomBlock(); });
    rows->addWidget(add_);
    return box;
}

ValueSlider* ZoomSection::makeSlider(const QString& name, int lowest, int highest, int usual) {
    auto* slider = new ValueSlider(name, theme::zoom, lowest, highest, usual, this);
    slider->onGestureBegin = [this] { model_.beginCurveEdit(); };
    slider->onGestureEnd = [this] { model_.endCurveEdit(); };
    return slider;
}

Field* ZoomSection::makeFocalField(const QString& name, bool isX) {
    auto* field = new Field(name, valueFormats::share(), this);
    field->onValue = [this, isX](double value) -> std::optional<QString> {
        if (value < 0 || value > 1) return tr("Places run from 0% to 100%.");
        const ZoomBlock* block = selected();
        if (block) model_.updateZoomFocal(block->id, isX ? value : block->focalX, isX ? block->focalY : value, false);
        return {};
    };
    return field;
}

QWidget* ZoomSection::makeBlock() {
    auto* box = new QWidget(this);
    auto* rows = column(box);
    const ZoomBlock usual;
    amountText_ = new LineLabel(theme::Type::code, theme::text2, {}, box);
    rows->addLayout(labelledRow(tr("Amount"), amountText_));
    amount_ = makeSlider(tr("Amount"), stepOf(lowestZoomAmount, amountSteps), stepOf(highestZoomAmount, amountSteps),
                         stepOf(usual.amount, amountSteps));
    amount_->onValue = [this](int step) { change([&](ZoomBlock& block) { block.amount = step / amountSteps; }); };
    rows->addWidget(amount_);
    rows->addSpacing(8);
    rampText_ = new LineLabel(theme::Type::code, theme::text2, {}, box);
    rows->addLayout(labelledRow(tr("Ramp"), rampText_));
    ramp_ = makeSlider(tr("Ramp"), 0, stepOf(longestZoomRamp, rampSteps), stepOf(usual.rampDuration, rampSteps));
    ramp_->onValue = [this](int step) { change([&](ZoomBlock& block) { block.rampDuration = step / rampSteps; }); };
    rows->addWidget(ramp_);
    rows->addSpacing(4);
    rows->addWidget(new Paragraph(theme::Type::small, theme::text2,
                                  tr("Ramp length in seconds of playback — clamped automatically when the block is "
                                     "shorter. 0 = hard cut."),
                                  box));
    mode_ = new ListBox(tr("Mode"), {tr("In and out"), tr("In"), tr("Out"), tr("Constant")}, box);
    mode_->setFixedWidth(136);
    mode_->onChoice = [this](int index) {
        change([&](ZoomBlock& block) { block.mode = modes[static_cast<std::size_t>(index)]; });
    };
    rows->addSpacing(12);
    rows->addLayout(labelledRow(tr("Mode"), mode_, 28));
    focalX_ = makeFocalField(tr("Focal X"), true);
    focalY_ = makeFocalField(tr("Focal Y"), false);
    focal_ = new FieldPair(tr("Focal X"), focalX_, tr("Focal Y"), focalY_, box);
    rows->addSpacing(12);
    rows->addWidget(focal_);
    rows->addWidget(new Paragraph(
        theme::Type::small, theme::text2,
        keyNames::local(tr("Drag the target on the video to set the focal point — ⌥-drag to keyframe motion at the "
                           "playhead.")),
        box));
    return box;
}

const ZoomBlock* ZoomSection::selected() const {
    const auto& id = model_.zoom().selectedZoomBlockID();
    return id ? model_.zoom().block(*id) : nullptr;
}

void ZoomSection::change(const std::function<void(ZoomBlock&)>& change) {
    const ZoomBlock* block = selected();
    if (!block) return;
    ZoomBlock changed = *block;
    change(changed);
    model_.updateZoomBlock(changed);
}

void ZoomSection::refresh() {
    const ZoomBlock* block = selected();
    empty_->setVisible(!block);
    block_->setVisible(block);
    place_->setVisible(block);
    remove_->setVisible(block);
    if (block) {
        const auto& blocks = model_.zoom().zoomBlocks();
        const auto at = std::ranges::find(blocks, block->id, &ZoomBlock::id);
        place_->setText(tr("%1 of %2").arg(at - blocks.begin() + 1).arg(blocks.size()));
        amount_->showValue(stepOf(block->amount, amountSteps));
        amountText_->setText(valueText::speed(block->amount));
        ramp_->showValue(stepOf(block->rampDuration, rampSteps));
        rampText_->setText(tr("%1 s").arg(block->rampDuration, 0, 'f', 2));
        mode_->setChosen(static_cast<int>(std::find(modes.begin(), modes.end(), block->mode) - modes.begin()));
    }
    refreshFocal();
}

void ZoomSection::refreshFocal() {
    const ZoomBlock* block = selected();
    if (!block) {
        const bool hasRoom = model_.canAddOrSelectZoomBlock();
        if (add_->isEnabled() == hasRoom && !add_->toolTip().isEmpty() == !hasRoom) return;
        add_->setEnabled(hasRoom);
        add_->setToolTip(hasRoom ? QString() : tr("No room for 0.25 s here."));
        return;
    }
    // With places of its own in time, the block's is where it is at the playhead, and set on the picture.
    const bool moves = !block->focalKeyframes.empty();
    const ZoomEngine::FocalPoint place = ZoomEngine::focal(
        moves ? ZoomBlockRules::progressIn(*block, {model_.playheadSeconds()}, model_.curve().timeMap()) : 0, *block);
    focalX_->setEnabled(!moves);
    focalY_->setEnabled(!moves);
    focalX_->showValue(place.x);
    focalY_->showValue(place.y);
}

} // namespace flowtide
