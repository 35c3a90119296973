#include "ui/panes/preview_section.h"

#include <QVBoxLayout>

namespace flowtide {

PreviewSection::PreviewSection(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model) {
    auto* section = new InspectorSection(tr("Preview"), this);
    idle_ = new Switch(tr("Render while idle"), theme::text, section);
    connect(idle_, &Switch::clicked, this, [this](bool isOn) { model_.setSmartPreviewEnabled(isOn); });
    section->add(labelledRow(tr("Render while idle"), idle_));
    section->add(new Paragraph(theme::Type::small, theme::text2,
                               tr("Render up to five output seconds around the playhead, inside marked ranges only."),
                               section),
                 4);
    resolution_ = new Choice(tr("Preview resolution"), {{tr("720p")}, {tr("Full resolution")}}, section);
    resolution_->onChoice = [this](int index) {
        model_.setPreviewResolution(index == 0 ? PreviewResolution::quick : PreviewResolution::full);
    };
    section->add(resolution_, 12);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(section);
    changes_ =
        model_.subscribe(properties({Property::clip, Property::smartPreviewEnabled, Property::previewResolution}),
                         [this](const PropertySet&) { refresh(); });
    refresh();
}

void PreviewSection::refresh() {
    idle_->setChecked(model_.timeline().smartPreviewEnabled());
    resolution_->setChosen(model_.timeline().previewResolution() == PreviewResolution::quick ? 0 : 1);
}

} // namespace flowtide
