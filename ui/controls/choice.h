// One of a few, side by side.
#pragma once

#include "ui/controls/hover.h"

#include <QColor>
#include <QRadioButton>
#include <QString>
#include <QWidget>
#include <functional>
#include <vector>

namespace flowtide {

/// A row of segments. Arrow keys choose while it has the focus.
class Choice final : public QWidget {
    Q_OBJECT

public:
    struct Segment {
        QString text;
        QString icon = {}; ///< may be empty
        QColor color = {}; ///< of the icon while it is chosen
        QString tip = {};
    };

    /// `name`: of the whole, for the accessibility tree.
    Choice(const QString& name, std::vector<Segment> segments, QWidget* parent = nullptr);

    int chosen() const { return chosen_; }
    /// Tells nobody.
    void setChosen(int index);
    /// Called when the user has chosen another one.
    std::function<void(int index)> onChoice;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class SegmentButton;
    void choose(int index);

    std::vector<SegmentButton*> buttons_; ///< children
    int chosen_ = 0;
};

} // namespace flowtide
