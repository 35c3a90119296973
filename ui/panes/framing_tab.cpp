#include "ui/panes/framing_tab.h"

#include "ui/panes/crop_facts.h"
#include "ui/panes/point_section.h"
#include "ui/panes/subject_section.h"
#include "ui/panes/zoom_section.h"

#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide {

namespace {
constexpr std::array aspects{CropAspectRatio::nineBySixteen, CropAspectRatio::square, CropAspectRatio::fourByFive};

QString aspectText(CropAspectRatio aspect) {
    const std::string_view name = rawValue(aspect);
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}
} // namespace

FramingTab::FramingTab(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeCropSection());
    column->addWidget(makeCurveSection());
    column->addWidget(new PointSection(session, CurveEditorMode::cropCenter, this));
    column->addWidget(new SubjectSection(session, this));
    column->addWidget(new ZoomSection(session, this));
    column->addStretch(1);
    changes_ = model_.subscribe(properties({Property::clip, Property::isVerticalCropEnabled, Property::cropAspectRatio,
                                            Property::lockCropCenter, Property::centerSmoothing}),
                                [this](const PropertySet&) { refresh(); });
    refresh();
}

QWidget* FramingTab::makeCropSection() {
    auto* section = new InspectorSection(tr("Social crop"), this);
    section->setFirst();
    crop_ = new Switch(tr("Social crop"), theme::framing, section);
    crop_->setToolTip(tr("Toggle the crop (9:16, 1:1, or 4:5)"));
    connect(crop_, &Switch::clicked, this, [this](bool isOn) { model_.setVerticalCropEnabled(isOn); });
    section->addAction(crop_, 0);
    std::vector<Choice::Segment> segments;
    for (const CropAspectRatio aspect : aspects)
        segments.push_back({aspectText(aspect)});
    aspect_ = new Choice(tr("Aspect"), std::move(segments), section);
    aspect_->onChoice = [this](int index) { model_.setCropAspectRatio(aspects[static_cast<std::size_t>(index)]); };
    section->add(aspect_);
    impossible_ = new Paragraph(theme::Type::small, theme::text2, {}, section);
    impossible_->setContentsMargins(0, 8, 0, 0);
    section->add(impossible_);
    outputSize_ = new ValueRow(tr("Output size"), theme::Type::code, 0, section);
    section->add(outputSize_, 12);
    lock_ = new Switch(tr("Lock center"), theme::text, section);
    connect(lock_, &Switch::clicked, this, [this](bool isOn) { model_.setLockCropCenter(isOn); });
    section->add(labelledRow(tr("Lock center"), lock_), 4);
    return section;
}

QWidget* FramingTab::makeCurveSection() {
    auto* section = new InspectorSection(tr("Framing curve"), this);
    reset_ = new TextAction(tr("Reset framing"), QStringLiteral("reset"), section);
    connect(reset_, &TextAction::clicked, this, [this] { model_.resetCenterCurve(); });
    section->addAction(reset_, TextAction::overhang);
    glideText_ = new LineLabel(theme::Type::code, theme::text2, {}, section);
    section->add(labelledRow(tr("Glide"), glideText_));
    const int usual = static_cast<int>(std::lround(Framing::defaultGlide * 100));
    glide_ = new ValueSlider(tr("Glide"), theme::framing, 0, 100, usual, section);
    glide_->onValue = [this](int percent) { model_.setCenterSmoothing(percent / 100.0); };
    section->add(glide_);
    return section;
}

void FramingTab::refresh() {
    const Framing& framing = model_.framing();
    crop_->setChecked(framing.isVerticalCropEnabled());
    const auto aspect = std::find(aspects.begin(), aspects.end(), framing.cropAspectRatio());
    aspect_->setChosen(static_cast<int>(aspect - aspects.begin()));
    lock_->setChecked(framing.lockCropCenter());
    const int percent = static_cast<int>(std::lround(framing.centerSmoothing() * 100));
    glide_->showValue(percent);
    glideText_->setText(QStringLiteral("%1%").arg(percent));
    if (!model_.clip()) return;

    const CropFacts facts = cropFacts(model_);
    const bool isRotated = facts.state == CropFacts::State::rotated;
    impossible_->setVisible(isRotated || facts.state == CropFacts::State::notWider);
    impossible_->setColor(isRotated ? theme::attention : theme::text2);
    impossible_->setText(isRotated ? tr("Vertical crop export currently requires an unrotated source clip.")
                                   : tr("The clip is not wider than the crop frame and is exported uncropped."));
    outputSize_->setValue(tr("%1 × %2").arg(facts.outputSize.width).arg(facts.outputSize.height));
}

} // namespace flowtide
