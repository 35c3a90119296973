// The inspector's tab for the speed curve.
#pragma once

#include "ui/controls/labels.h"
#include "ui/controls/slider.h"
#include "ui/controls/text_action.h"
#include "ui/panes/inspector_section.h"
#include "ui/panes/inspector_session.h"

#include <QWidget>

namespace flowtide {

class SpeedTab final : public QWidget {
    Q_OBJECT

public:
    explicit SpeedTab(const InspectorSession& session, QWidget* parent = nullptr);

private:
    QWidget* makeCurveSection();
    void refresh();

    FlowtideViewModel& model_;
    TextAction* reset_;
    LineLabel* smoothingText_;
    ValueSlider* smoothing_;
    ValueRow* sourceRange_;
    ValueRow* outputDuration_;
    Subscription changes_;
};

} // namespace flowtide
