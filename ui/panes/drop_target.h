// Where clips are dropped.
#pragma once

#include "ui/controls/buttons.h"

#include <QString>
#include <QWidget>

namespace flowtide {

class DropTarget final : public QWidget {
    Q_OBJECT

public:
    static constexpr int targetHeight = 256;

    explicit DropTarget(QWidget* parent = nullptr);

    /// What a drop would do.
    static QString dropSentence(const QString& name, bool isOpenable);

    Button* openButton() const { return open_; }
    /// What hangs over the window: its name, and whether it can be opened; empty: nothing.
    void showDrop(const QString& name, bool isOpenable);
    /// What is said of the file that is being opened; empty: nothing.
    void showOpening(const QString& sentence);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    Button* open_;
    void showButton();

    QString dropName_;
    QString opening_;
    bool isOpenable_ = false;
};

} // namespace flowtide
