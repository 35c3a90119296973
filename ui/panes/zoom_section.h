// The selected zoom block.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/controls/list_box.h"
#include "ui/controls/slider.h"
#include "ui/panes/field_pair.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>
#include <functional>

namespace flowtide {

class ZoomSection final : public QWidget {
    Q_OBJECT

public:
    explicit ZoomSection(const InspectorSession& session, QWidget* parent = nullptr);

private:
    QWidget* makeEmpty();
    QWidget* makeBlock();
    ValueSlider* makeSlider(const QString& name, int lowest, int highest, int usual);
    Field* makeFocalField(const QString& name, bool isX);
    void refresh();
    void refreshFocal();
    const ZoomBlock* selected() const;
    void change(const std::function<void(ZoomBlock&)>& change);

    FlowtideViewModel& model_;
    LineLabel* place_;
    IconButton* remove_;
    QWidget* empty_;
    Button* add_;
    QWidget* block_;
    LineLabel* amountText_;
    ValueSlider* amount_;
    LineLabel* rampText_;
    ValueSlider* ramp_;
    ListBox* mode_;
    FieldPair* focal_;
    Field* focalX_;
    Field* focalY_;
    Subscription changes_;
};

} // namespace flowtide
