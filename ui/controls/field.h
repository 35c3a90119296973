// A value that is typed.
#pragma once

#include "ui/controls/hover.h"

#include <QLineEdit>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace flowtide {

/// Enter, and leaving it, apply what was typed; Esc restores; ↑ and ↓ move by a step (Shift: ten).
class Field final : public QLineEdit {
    Q_OBJECT

public:
    /// One of the values that a field's menu offers.
    struct Preset {
        QString label;
        double value = 0;
    };
    /// What a field's value is and how it is written.
    struct Format {
        std::function<QString(double)> text;
        std::function<std::optional<double>(const QString&)> value; ///< nothing when it is no value
        std::function<double(double, int steps)> stepped;           ///< the value that many steps away
        QString noValue = {}; ///< the sentence for what is no value; empty: the field is restored
    };

    Field(const QString& name, Format format, QWidget* parent = nullptr);

    /// With values to choose from, in a menu that opens at the right.
    void setPresets(std::vector<Preset> presets);
    void showValue(double value);
    double value() const { return value_; }
    /// It holds something else than its value: Esc brings that back.
    bool isEdited() const { return isModified() || isRefused_; }

    /// What the user wants. A sentence when it is refused: the field then stays as it was typed, marked.
    std::function<std::optional<QString>(double value)> onValue;
    /// The sentence to show below the field; nothing: none any more.
    std::function<void(std::optional<QString> sentence)> onRefused;

    QSize sizeHint() const override { return {108, 28}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void apply();
    void want(double value);
    void restore();
    void openMenu();
    void setRefused(std::optional<QString> sentence);
    bool isOnChevron(const QPointF& place) const;

    Format format_;
    std::vector<Preset> presets_;
    double value_ = 0;
    bool isRefused_ = false;
    Hover hover_{*this};
};

} // namespace flowtide
