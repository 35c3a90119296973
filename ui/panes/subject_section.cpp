#include "ui/panes/subject_section.h"

#include <QVBoxLayout>

namespace flowtide {

SubjectSection::SubjectSection(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model) {
    auto* section = new InspectorSection(tr("Subject"), this);
    track_ = new Button(ButtonKind::secondary, tr("Track subject"), QStringLiteral("track"), section);
    connect(track_, &Button::clicked, this, [this] { model_.beginSubjectSelection(); });
    section->add(track_);
    hint_ = new Paragraph(theme::Type::small, theme::text2, {}, section);
    section->add(hint_, 8);
    tracked_ = new ValueRow(tr("Tracked"), theme::Type::code, 0, section);
    tracked_->labelColor = theme::text;
    tracked_->setSign({}, theme::framing, 8);
    lost_ = new ValueRow(tr("Subject lost"), theme::Type::code, 0, section);
    lost_->labelColor = theme::text;
    section->add(tracked_, 8);
    section->add(lost_);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(section);
    changes_ = model_.subscribe(
        properties({Property::clip, Property::trackedRanges, Property::isTracking, Property::selectingSubject}),
        [this](const PropertySet&) { refresh(); });
    refresh();
}

void SubjectSection::refresh() {
    const bool isTracking = model_.tracking().isTracking();
    track_->setEnabled(model_.clip() && !isTracking && !model_.tracking().selectingSubject());
    hint_->setText(isTracking ? tr("Tracking runs from the chosen frame in both directions. Editing the framing now "
                                   "discards this track.")
                              : tr("Draw a tight box around the subject (torso for a player). Tracking follows it in "
                                   "both directions."));
    double seconds = 0;
    int losses = 0;
    for (const SubjectTrackingRange& range : model_.trackedRanges()) {
        seconds += range.end - range.start;
        losses += (range.lostBefore ? 1 : 0) + (range.lostAfter ? 1 : 0);
    }
    tracked_->setValue(tr("%1 s").arg(seconds, 0, 'f', 2));
    lost_->setValue(QString::number(losses));
    lost_->setSign(QStringLiteral("flag"), losses > 0 ? theme::attention : theme::text2, 12);
}

} // namespace flowtide
