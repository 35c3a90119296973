// The row above the ruler: which curve, how long the output becomes, and how much of the clip is shown.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/controls/choice.h"
#include "ui/graph/timeline_context.h"

#include <QWidget>

namespace flowtide {

class TimelineHead final : public QWidget {
    Q_OBJECT

public:
    TimelineHead(TimelineContext& context, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();

    TimelineContext& context_;
    Choice* mode_;
    IconButton* zoomOut_;
    IconButton* fit_;
    IconButton* zoomIn_;
    Subscription changes_;
};

} // namespace flowtide
