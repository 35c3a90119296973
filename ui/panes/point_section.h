// The selected point of a curve: its time and its value.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/panes/field_pair.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>

namespace flowtide {

/// Of one of the two curves, while the graph edits it. As high without a point as with one.
class PointSection final : public QWidget {
    Q_OBJECT

public:
    PointSection(const InspectorSession& session, CurveEditorMode mode, QWidget* parent = nullptr);

private:
    void refresh();
    const SpeedKeyframes& points() const;
    void install(SpeedKeyframes points);
    Field* makeTimeField();
    Field* makeValueField();
    std::optional<QString> moveTo(double time);

    FlowtideViewModel& model_;
    PointSelection& selection_;
    CurveEditorMode mode_;
    InspectorSection* section_;
    LineLabel* place_;
    IconButton* remove_;
    QWidget* body_;
    Paragraph* empty_;
    FieldPair* fields_;
    Field* time_;
    Field* value_;
    Subscription changes_;
};

} // namespace flowtide
