// Texts in panes.
#pragma once

#include "ui/theme.h"

#include <QColor>
#include <QString>
#include <QWidget>
#include <functional>

namespace flowtide {

/// What texts have in common: words in a type and a color, known to the accessibility tree by themselves.
class Text : public QWidget {
    Q_OBJECT

public:
    const QString& text() const { return text_; }
    void setText(const QString& text);
    void setColor(QColor color);
    void setAlignment(Qt::Alignment alignment);

protected:
    Text(theme::Type type, QColor color, const QString& text, QWidget* parent);

    theme::Type type() const { return type_; }
    Qt::Alignment alignment() const { return alignment_; }
    /// What it is drawn in now.
    QColor ink() const { return isEnabled() ? color_ : theme::text3; }
    /// The text is another one.
    virtual void textChanged() {}

private:
    theme::Type type_;
    QColor color_;
    QString text_;
    Qt::Alignment alignment_ = Qt::AlignLeft;
};

/// One line; what is too long is elided in the middle, so that an extension stays, and whole as the tip.
class LineLabel final : public Text {
    Q_OBJECT

public:
    LineLabel(theme::Type type, QColor color, const QString& text = {}, QWidget* parent = nullptr)
        : Text(type, color, text, parent) {}

    /// Digits all as wide as the widest: for numbers that change.
    void setTabular(bool isTabular) { isTabular_ = isTabular; }
    void setElideMode(Qt::TextElideMode mode) { elide_ = mode; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void textChanged() override { updateTip(); }

private:
    void updateTip();

    Qt::TextElideMode elide_ = Qt::ElideMiddle;
    bool isTabular_ = false;
};

/// Sentences that wrap, on the lines of their type.
class Paragraph final : public Text {
    Q_OBJECT

public:
    Paragraph(theme::Type type, QColor color, const QString& text = {}, QWidget* parent = nullptr);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Calls `line` with each line's words and number; returns how many there are.
    int lay(double width, const std::function<void(const QString& words, int index)>& line) const;
};

/// A share of a whole, or, below 0, an unknown one.
class ProgressBar final : public QWidget {
    Q_OBJECT

public:
    ProgressBar(const QString& name, QColor color, QWidget* parent = nullptr);

    void setShare(double share);
    QSize sizeHint() const override { return {80, 4}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void travel();

    QString name_;
    QColor color_;
    double share_ = 0;
    double place_ = 0; ///< of the travelling piece, 0...1
    int timer_ = 0;
};

} // namespace flowtide
