// Buttons with words, and buttons with an icon.
#pragma once

#include "ui/controls/hover.h"

#include <QColor>
#include <QPushButton>
#include <QString>
#include <QToolButton>

namespace flowtide {

enum class ButtonKind {
    primary,   ///< white; one a view
    secondary, ///< grey
    quiet      ///< without a ground until it is hovered
};

class Button final : public QPushButton {
    Q_OBJECT

public:
    /// `icon` may be empty. Primary buttons are 32 high, others 28, unless setButtonHeight() says otherwise.
    Button(ButtonKind kind, const QString& text, QString icon = {}, QWidget* parent = nullptr);

    void setButtonHeight(int pixels);
    /// The height stays.
    void setKind(ButtonKind kind);
    /// 0...1: what the button began is under way, and the button grey and filled so far; below 0: it is not.
    void setShare(double share);
    /// Keeps place for the widest of its texts, so that nothing moves when the text changes.
    void reserveWidthFor(const QStringList& texts);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double widthFor(const QString& text) const;

    ButtonKind kind_;
    QString icon_;
    int height_;
    double share_ = -1;
    double reserved_ = 0;
    Hover hover_{*this};
};

class IconButton final : public QToolButton {
    Q_OBJECT

public:
    /// `name`: what it is called by the accessibility tree; `tip`: its tooltip, with the keys in brackets. `size` is 32
    /// (icon 20) or 24 (icon 16). Takes the focus by keyboard only.
    IconButton(QString icon, const QString& name, const QString& tip, QWidget* parent = nullptr, int size = 32);

    void setIconName(const QString& icon);
    /// What the icon is drawn in while the button is checked.
    void setOnColor(QColor color) { onColor_ = color; }
    /// A circle with a ground of its own, as the play button has.
    void setRound(int diameter);
    QSize sizeHint() const override { return {size_, size_}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString icon_;
    int size_;
    bool isRound_ = false;
    QColor onColor_;
    Hover hover_{*this};
};

} // namespace flowtide
