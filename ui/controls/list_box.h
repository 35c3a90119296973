// One of several, in a menu.
#pragma once

#include "ui/controls/hover.h"

#include <QPushButton>
#include <QStringList>
#include <functional>

namespace flowtide {

/// Shows the chosen one; a click, Enter, Space or ↑ ↓ choose another.
class ListBox final : public QPushButton {
    Q_OBJECT

public:
    ListBox(QString name, QStringList items, QWidget* parent = nullptr);

    int chosen() const { return chosen_; }
    /// Tells nobody.
    void setChosen(int index);
    std::function<void(int index)> onChoice;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void openMenu();
    void choose(int index);

    QString name_;
    QStringList items_;
    int chosen_ = 0;
    Hover hover_{*this};
};

} // namespace flowtide
