// A row of the inspector for one Optical Flow range.
#pragma once

#include "ui/controls/hover.h"
#include "ui/controls/labels.h"
#include "ui/controls/switch.h"
#include "ui/panes/flow_range_state.h"

#include <QAbstractButton>

namespace flowtide {

/// A click selects the range, and selects none when it was selected; its menu renders, loops and switches it.
class FlowRangeRow final : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int rowHeight = 40;
    static constexpr int overhang = 8; ///< of its ground, at each side

    explicit FlowRangeRow(FlowtideViewModel& model, QWidget* parent = nullptr);

    void show(const FlowRangeState& state);
    QSize sizeHint() const override { return {248, rowHeight}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString stateText() const;
    QString rangeText() const;
    void openMenu(const QPoint& place);

    FlowtideViewModel& model_;
    FlowRangeState state_;
    Switch* switch_;
    ProgressBar* progress_;
    Hover hover_{*this};
};

} // namespace flowtide
