// In-between frames: how they are made, where, and what of them is rendered.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/controls/choice.h"
#include "ui/controls/list_box.h"
#include "ui/paced.h"
#include "ui/panes/flow_range_row.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>
#include <vector>

namespace flowtide {

class FlowSection final : public QWidget {
    Q_OBJECT

public:
    explicit FlowSection(const InspectorSession& session, QWidget* parent = nullptr);

private:
    QLayout* makeButtons();
    void refresh();
    void refreshProgress();

    FlowtideViewModel& model_;
    UserSettings& settings_;
    Choice* interpolation_;
    ListBox* smoothMotion_;
    Paragraph* empty_;
    QWidget* list_;
    std::vector<FlowRangeRow*> rows_; ///< children of the list; those that are not needed are hidden
    Button* renderAll_;
    Button* endRender_; ///< stops or clears
    bool stops_ = false;
    Paragraph* error_;
    Paced progress_{[this] { refreshProgress(); }};
    Subscription changes_;
};

} // namespace flowtide
