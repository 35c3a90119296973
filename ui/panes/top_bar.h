// The bar above everything: projects, open, undo; the project's name; help, the menu, export.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/buttons.h"
#include "ui/controls/labels.h"
#include "ui/paced.h"
#include "ui/shortcuts.h"

#include <QMenu>
#include <QWidget>
#include <functional>

namespace flowtide {

class TopBar final : public QWidget {
    Q_OBJECT

public:
    static constexpr int barHeight = 48;

    TopBar(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent = nullptr);

    /// Which panes are shown.
    void showPanes(bool sidebar, bool inspector);
    /// Shown by the menu button.
    void setMenu(QMenu* menu);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void place();

    FlowtideViewModel& model_;
    IconButton* sidebar_;
    IconButton* open_;
    IconButton* undo_;
    IconButton* redo_;
    LineLabel* name_;
    LineLabel* saved_;
    IconButton* shortcuts_;
    IconButton* inspector_;
    IconButton* menuButton_;
    Button* export_;
    QMenu* menu_ = nullptr;
    bool hasClip_ = false;
    bool savedWell_ = false;
    bool savedBadly_ = false;
    QRectF savedSign_; ///< before the save state; empty when there is none
    Paced progress_{[this] { refresh(); }};
    Subscription changes_;
};

} // namespace flowtide
