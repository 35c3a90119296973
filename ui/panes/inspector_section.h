// A section of the inspector: a heading with its action, and rows below it.
#pragma once

#include "ui/controls/labels.h"
#include "ui/theme.h"

#include <QString>
#include <QVBoxLayout>
#include <QWidget>
#include <vector>

namespace flowtide {

/// A line above parts it from the section before; the first one has none.
class InspectorSection final : public QWidget {
    Q_OBJECT

public:
    static constexpr int padding = 16;
    static constexpr int headingGap = 12; ///< below the heading

    explicit InspectorSection(const QString& title, QWidget* parent = nullptr);

    /// At the heading's right end, before those that are there. `overhang`: how far it reaches beyond what it shows.
    void addAction(QWidget* action, int overhang);
    void setTitle(const QString& title);
    /// To be called once, before anything is shown.
    void setFirst();
    /// A row, `gap` pixels below the one before; the first one stands below the heading.
    void add(QWidget* row, int gap = 0);
    void add(QLayout* row, int gap = 0);
    /// For a last row that has room of its own below it.
    void dropPaddingBelow();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void placeHeading();

    struct Action {
        QWidget* widget;
        int overhang;
    };
    LineLabel* title_;
    std::vector<Action> actions_;
    bool isFirst_ = false;
    QVBoxLayout* rows_;
};

/// A name and a value: beside each other, or the value at the right end.
class ValueRow final : public QWidget {
    Q_OBJECT

public:
    /// `labelWidth`: where the value begins; 0: it ends at the right.
    ValueRow(const QString& label, theme::Type valueType, int labelWidth = 0, QWidget* parent = nullptr);

    void setValue(const QString& value);
    /// A sign before the label.
    void setSign(const QString& icon, QColor color, double size);
    QColor labelColor = theme::text2;
    QColor valueColor = theme::text;
    QSize sizeHint() const override { return {120, 20}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label_;
    QString value_;
    QString icon_;
    QColor iconColor_;
    double iconSize_ = 0;
    theme::Type type_;
    int labelWidth_;
};

/// A label with a control at the right end of its row.
QHBoxLayout* labelledRow(const QString& label, QWidget* control, int height = 20);

} // namespace flowtide
