// The inspector's tab for the crop, its curve, the subject and zoom.
#pragma once

#include "ui/controls/choice.h"
#include "ui/controls/labels.h"
#include "ui/controls/slider.h"
#include "ui/controls/switch.h"
#include "ui/controls/text_action.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>

namespace flowtide {

class FramingTab final : public QWidget {
    Q_OBJECT

public:
    explicit FramingTab(const InspectorSession& session, QWidget* parent = nullptr);

private:
    QWidget* makeCropSection();
    QWidget* makeCurveSection();
    void refresh();

    FlowtideViewModel& model_;
    Switch* crop_;
    Choice* aspect_;
    Paragraph* impossible_;
    ValueRow* outputSize_;
    Switch* lock_;
    TextAction* reset_;
    LineLabel* glideText_;
    ValueSlider* glide_;
    Subscription changes_;
};

} // namespace flowtide
