#include "ui/panes/speed_tab.h"

#include "ui/panes/flow_section.h"
#include "ui/panes/point_section.h"
#include "ui/panes/preview_section.h"
#include "ui/value_text.h"

#include <QVBoxLayout>
#include <cmath>

namespace flowtide {

SpeedTab::SpeedTab(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeCurveSection());
    column->addWidget(new PointSection(session, CurveEditorMode::speed, this));
    column->addWidget(new FlowSection(session, this));
    column->addWidget(new PreviewSection(session, this));
    column->addStretch(1);
    changes_ = model_.subscribe(
        properties({Property::clip, Property::keyframes, Property::curveSmoothing, Property::trimRange}),
        [this](const PropertySet&) { refresh(); });
    refresh();
}

QWidget* SpeedTab::makeCurveSection() {
    auto* section = new InspectorSection(tr("Speed curve"), this);
    section->setFirst();
    reset_ = new TextAction(tr("Reset curve"), QStringLiteral("reset"), section);
    connect(reset_, &TextAction::clicked, this, [this] { model_.resetCurve(); });
    section->addAction(reset_, TextAction::overhang);

    smoothingText_ = new LineLabel(theme::Type::code, theme::text2, {}, section);
    section->add(labelledRow(tr("Smoothing"), smoothingText_));
    const int usual = static_cast<int>(std::lround(SpeedCurve::defaultSmoothing * 100));
    smoothing_ = new ValueSlider(tr("Smoothing"), theme::curve, 0, 100, usual, section);
    smoothing_->onGestureBegin = [this] { model_.beginCurveEdit(); };
    smoothing_->onValue = [this](int percent) { model_.setCurveSmoothing(percent / 100.0); };
    smoothing_->onGestureEnd = [this] { model_.endCurveEdit(); };
    section->add(smoothing_);
    sourceRange_ = new ValueRow(tr("Source range"), theme::Type::code, 0, section);
    outputDuration_ = new ValueRow(tr("Output duration"), theme::Type::code, 0, section);
    section->add(sourceRange_, 8);
    section->add(outputDuration_);
    return section;
}

void SpeedTab::refresh() {
    const SpeedCurve& curve = model_.curve();
    const int percent = static_cast<int>(std::lround(curve.smoothing() * 100));
    smoothing_->showValue(percent);
    smoothingText_->setText(QStringLiteral("%1%").arg(percent));
    const SourceRange trim = curve.trimRange();
    sourceRange_->setValue(valueText::timeCode(trim.upper - trim.lower));
    outputDuration_->setValue(valueText::timeCode(model_.clip() ? curve.timeMap().outputDuration() : 0));
    reset_->setEnabled(model_.clip() != nullptr);
}

} // namespace flowtide
