// A measured value that changes while it is read.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

namespace flowtide {

/// A label over a value, both of which keep their places whatever the value is.
class Readout final : public QWidget {
    Q_OBJECT

public:
    Readout(const QString& label, QColor color, QWidget* parent);

    /// `rest` follows the value in a quieter color.
    void setValue(const QString& value, const QString& rest = {});
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label_;
    QColor color_;
    QString value_;
    QString rest_;
};

} // namespace flowtide
