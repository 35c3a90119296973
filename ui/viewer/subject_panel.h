// What choosing and following a subject has to say.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/buttons.h"
#include "ui/controls/labels.h"

#include <QTimer>
#include <QWidget>
#include <functional>

namespace flowtide {

/// Shown from the choice of a subject until its closing sentence is dismissed.
class SubjectPanel final : public QWidget {
    Q_OBJECT

public:
    static constexpr int panelWidth = 400;

    SubjectPanel(FlowtideViewModel& model, QWidget* parent);

    /// Called when it wants another place or size.
    std::function<void()> onResized;
    /// Whether it has something to say.
    bool isWanted() const;
    /// Takes back a sentence that has nothing left to wait for; false when there is none.
    bool dismiss();
    /// Out of the way while a box is drawn.
    void setHiddenForDrawing(bool isDrawing);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    void showProgress();

    FlowtideViewModel& model_;
    Paragraph* sentence_;
    LineLabel* share_;
    ProgressBar* progress_;
    Button* cancel_;
    IconButton* close_;
    bool isDrawing_ = false;
    QTimer progressPace_; ///< texts change at most four times a second
    Subscription changes_;
};

} // namespace flowtide
