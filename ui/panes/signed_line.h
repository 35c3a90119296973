// A short statement with its sign.
#pragma once

#include "ui/controls/labels.h"

#include <QColor>
#include <QString>
#include <QWidget>

namespace flowtide {

class SignedLine final : public QWidget {
    Q_OBJECT

public:
    static constexpr int textLeft = 24;

    SignedLine(QString icon, QColor color, const QString& text, QWidget* parent = nullptr);

    LineLabel* words() const { return words_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString icon_;
    QColor color_;
    LineLabel* words_;
};

} // namespace flowtide
