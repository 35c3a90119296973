#include "ui/panes/point_section.h"

#include "ui/graph/curve_point_edits.h"
#include "ui/key_names.h"
#include "ui/panes/point_edits.h"
#include "ui/panes/value_formats.h"
#include "ui/value_text.h"

#include <QVBoxLayout>
#include <utility>

namespace flowtide {

PointSection::PointSection(const InspectorSession& session, CurveEditorMode mode, QWidget* parent)
    : QWidget(parent)
    , model_(session.model)
    , selection_(session.points)
    , mode_(mode) {
    const bool isSpeed = mode_ == CurveEditorMode::speed;
    section_ = new InspectorSection(tr("Point"), this);
    remove_ = new IconButton(QStringLiteral("trash"), tr("Delete selected points"),
                             keyNames::local(tr("Delete selected points (Delete)")), this, 24);
    section_->addAction(remove_, 4);
    place_ = new LineLabel(theme::Type::body, theme::text2, {}, this);
    section_->addAction(place_, 0);

    body_ = new QWidget(section_);
    body_->setFixedHeight(FieldPair::fieldsHeight + FieldPair::sentenceHeight);
    empty_ = new Paragraph(theme::Type::small, theme::text2, {}, body_);
    time_ = makeTimeField();
    value_ = makeValueField();
    fields_ = new FieldPair(tr("Time"), time_, isSpeed ? tr("Speed") : tr("Position"), value_, body_);
    auto* stack = new QVBoxLayout(body_);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->addWidget(empty_, 0, Qt::AlignTop);
    stack->addWidget(fields_);
    section_->add(body_);
    section_->dropPaddingBelow();
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(section_);

    connect(remove_, &IconButton::clicked, this, [this] {
        const CurveEditorAxis axis =
            mode_ == CurveEditorMode::speed ? CurveEditorAxis::speed() : CurveEditorAxis::cropCenter();
        install(curvePointEdits::withoutPoints(points(), selection_.ids(), axis));
    });
    connect(&selection_, &PointSelection::changed, this, [this] { refresh(); });
    changes_ = model_.subscribe(properties({Property::clip, Property::editorMode, Property::trimRange,
                                            isSpeed ? Property::keyframes : Property::centerKeyframes}),
                                [this](const PropertySet&) { refresh(); });
    refresh();
}

const SpeedKeyframes& PointSection::points() const {
    return mode_ == CurveEditorMode::speed ? model_.curve().keyframes() : model_.framing().centerKeyframes();
}

void PointSection::install(SpeedKeyframes points) {
    if (mode_ == CurveEditorMode::speed)
        model_.replaceKeyframes(std::move(points));
    else
        model_.replaceCenterKeyframes(std::move(points));
}

std::optional<QString> PointSection::moveTo(double time) {
    const auto id = selection_.single();
    if (!id) return {};
    switch (pointEdits::refusalOfTime(points(), *id, time, model_.curve().duration())) {
    case pointEdits::TimeRefusal::outsideClip:
        return tr("The clip ends at %1.").arg(valueText::timeCode(model_.curve().duration()));
    case pointEdits::TimeRefusal::nearAnother:
        return tr("Another point is there. Points stay 0.01 s apart.");
    case pointEdits::TimeRefusal::none:
        break;
    }
    install(pointEdits::withTime(points(), *id, time));
    return {};
}

Field* PointSection::makeTimeField() {
    Field::Format format = valueFormats::time([this] {
        const auto& clip = model_.clip();
        return clip ? clip->frameDuration.seconds() : 1.0;
    });
    auto* field = new Field(tr("Time"), std::move(format), body_);
    field->onValue = [this](double time) { return moveTo(time); };
    return field;
}

Field* PointSection::makeValueField() {
    const bool isSpeed = mode_ == CurveEditorMode::speed;
    auto* field = new Field(isSpeed ? tr("Speed") : tr("Position"),
                            isSpeed ? valueFormats::speed() : valueFormats::position(), body_);
    field->setPresets(valueFormats::presets(isSpeed ? CurveEditorAxis::speed() : CurveEditorAxis::cropCenter()));
    field->onValue = [this, isSpeed](double value) -> std::optional<QString> {
        if (isSpeed && (value < lowestSpeed || value > highestSpeed)) return tr("Speeds run from 0.01x to 100x.");
        if (!isSpeed && (value < leftmostCrop || value > rightmostCrop)) return tr("Positions run from 0% to 100%.");
        if (const auto id = selection_.single()) install(pointEdits::withValue(points(), *id, value));
        return {};
    };
    return field;
}

void PointSection::refresh() {
    const bool isActive = model_.timeline().editorMode() == mode_;
    const auto id = isActive ? selection_.single() : std::nullopt;
    const SpeedKeyframe* point = id ? pointEdits::find(points(), *id) : nullptr;
    const std::size_t count = isActive ? selection_.ids().size() : 0;

    remove_->setVisible(point || count > 1);
    place_->setVisible(point || count > 1);
    if (count > 1) {
        place_->setText(tr("%1 selected").arg(count));
    } else if (point) {
        const auto place = pointEdits::placeOf(points(), *id, model_.curve().trimRange(), model_.curve().duration());
        place_->setText(point->role == SpeedKeyframeRole::trimStart ? tr("Trim start")
                        : point->role == SpeedKeyframeRole::trimEnd ? tr("Trim end")
                        : place.number == 0                         ? tr("Outside the trim")
                                            : tr("%1 of %2").arg(place.number).arg(place.count));
    }
    const bool isSpeed = mode_ == CurveEditorMode::speed;
    empty_->setText(count > 1 ? (isSpeed ? tr("Select one point to edit its time and speed.")
                                         : tr("Select one point to edit its time and position."))
                    : isSpeed ? tr("Select a point on the curve to edit its time and speed.")
                              : tr("Select a point on the curve to edit its time and position."));
    empty_->setVisible(!point);
    fields_->setVisible(point);
    if (!point) return;
    time_->setEnabled(point->role == SpeedKeyframeRole::curve);
    time_->showValue(point->time);
    value_->showValue(point->speed);
}

} // namespace flowtide
