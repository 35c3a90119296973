#include "ui/panes/flow_section.h"

#include "core/slow_motion_guide.h"
#include "ui/session_text.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide {

namespace {
constexpr std::array<int, 5> smoothRates{24, 25, 30, 50, 60};
constexpr int rowGap = 4;
constexpr int listGap = 12;

QStringList rateTexts() {
    QStringList texts;
    for (const int rate : smoothRates)
        texts << FlowSection::tr("%1 fps").arg(rate);
    return texts;
}

/// Progress alone, which is shown a few times a second.
PropertySet progressProperties() {
    return properties({Property::previewRenderProgress, Property::renderAllProgress});
}

} // namespace

FlowSection::FlowSection(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model)
    , settings_(session.settings) {
    auto* section = new InspectorSection(tr("In-between frames"), this);
    interpolation_ = new Choice(tr("In-between frames"), {{tr("Optical Flow")}, {tr("Original Frames")}}, section);
    interpolation_->onChoice = [this](int index) {
        model_.setFrameInterpolation(index == 0 ? FrameInterpolation::opticalFlow : FrameInterpolation::nearest);
    };
    section->add(interpolation_);
    smoothMotion_ = new ListBox(tr("Smooth motion"), rateTexts(), section);
    smoothMotion_->setFixedWidth(88);
    smoothMotion_->onChoice = [this](int index) {
        settings_.setSmoothMotionFrameRate(smoothRates[static_cast<std::size_t>(index)]);
        model_.smoothMotionFrameRateChanged();
    };
    section->add(labelledRow(tr("Smooth motion"), smoothMotion_, 28), 12);
    empty_ = new Paragraph(theme::Type::small, theme::text2, tr("The curve never runs slow enough to need new frames."),
                           section);
    empty_->setContentsMargins(0, listGap, 0, 0);
    section->add(empty_);
    section->dropPaddingBelow();
    list_ = new QWidget(this);
    auto* rows = new QVBoxLayout(list_);
    // The rows' grounds reach beyond what they show.
    constexpr int inset = InspectorSection::padding - FlowRangeRow::overhang;
    rows->setContentsMargins(inset, listGap, inset, 0);
    rows->setSpacing(rowGap);
    error_ = new Paragraph(theme::Type::small, theme::attention, {}, this);
    error_->setContentsMargins(0, 8, 0, 0);
    auto* below = new QVBoxLayout;
    below->setContentsMargins(InspectorSection::padding, listGap, InspectorSection::padding, InspectorSection::padding);
    below->setSpacing(0);
    below->addLayout(makeButtons());
    below->addWidget(error_);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    outer->addWidget(section);
    outer->addWidget(list_);
    outer->addLayout(below);

    const PropertySet others =
        (flowRangeProperties() |
         properties({Property::previewRenderError, Property::isRenderingAllRanges, Property::isAutomaticPreviewRender,
                     Property::keyframes, Property::curveSmoothing})) &
        ~progressProperties();
    changes_ = model_.subscribe(others | progressProperties(), [this, others](const PropertySet& changed) {
        if ((changed & others).any())
            refresh();
        else
            progress_.request();
    });
    refresh();
}

QLayout* FlowSection::makeButtons() {
    renderAll_ = new Button(ButtonKind::secondary, tr("Render all ranges"), {}, this);
    renderAll_->setToolTip(tr("Render every purple range so you can play it back with its new frames"));
    connect(renderAll_, &Button::clicked, this, [this] {
        if (!model_.renders().isRenderingAllRanges()) model_.renderAllRanges();
    });
    endRender_ = new Button(ButtonKind::quiet, tr("Clear"), {}, this);
    endRender_->reserveWidthFor({tr("Clear"), tr("Stop")});
    connect(endRender_, &Button::clicked, this, [this] {
        if (!stops_)
            model_.clearPreviewCache();
        else if (model_.renders().isRenderingAllRanges())
            model_.stopRenderingAll();
        else
            model_.cancelPreviewRender();
    });
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(renderAll_, 1);
    row->addWidget(endRender_);
    return row;
}

void FlowSection::refresh() {
    const RenderAhead& renders = model_.renders();
    const bool isExporting = model_.exporting().isExporting();
    const bool showsFlow = model_.flow().frameInterpolation() == FrameInterpolation::opticalFlow;
    interpolation_->setChosen(showsFlow ? 0 : 1);
    interpolation_->setEnabled(!isExporting);
    const int rate = static_cast<int>(std::lround(settings_.smoothMotionFrameRate()));
    smoothMotion_->setChosen(
        static_cast<int>(std::find(smoothRates.begin(), smoothRates.end(), rate) - smoothRates.begin()));

    const bool hasRanges = !model_.flow().opticalFlowRanges().empty();
    empty_->setVisible(!hasRanges);
    list_->setVisible(hasRanges);

    const PreviewRender& render = renders.render();
    stops_ = renders.isRenderingAllRanges() || (render.isRendering() && !render.isAutomaticPreviewRender());
    endRender_->setText(stops_ ? tr("Stop") : tr("Clear"));
    const bool hasPreviews = !renders.previews().renderedPreviews().empty();
    endRender_->setEnabled(stops_ || (hasPreviews && showsFlow && !isExporting));
    endRender_->setToolTip(stops_        ? QString()
                           : hasPreviews ? tr("Remove preview renders while keeping all Optical Flow ranges")
                                         : tr("No rendered previews"));
    const bool isLeft = model_.clip() && !renders.previews().unrenderedRanges().empty();
    renderAll_->setEnabled(renders.isRenderingAllRanges() || (showsFlow && isLeft && !isExporting));
    const auto& error = render.previewRenderError();
    error_->setText(error ? sessionText(*error) : QString());
    error_->setVisible(error.has_value());
    progress_.runNow();
}

void FlowSection::refreshProgress() {
    const std::vector<FlowRangeState> states = flowRangeStates(model_);
    while (rows_.size() < states.size()) {
        rows_.push_back(new FlowRangeRow(model_, list_));
        list_->layout()->addWidget(rows_.back());
    }
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        if (index < states.size())
            rows_[index]->show(states[index]);
        else
            rows_[index]->hide();
    }
    const RenderAhead& renders = model_.renders();
    renderAll_->setText(sessionText(renders.renderAllLabel()));
    renderAll_->setShare(renders.isRenderingAllRanges() ? renders.renderAllProgress() : -1);
}

} // namespace flowtide
