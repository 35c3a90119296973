// The shadow of a floating panel.
#pragma once

#include <QWidget>

namespace flowtide {

/// Lies beneath its panel, a sibling that it follows; clicks pass through it.
class PanelShadow final : public QWidget {
    Q_OBJECT

public:
    /// The panel has its parent already. `radius`: the panel's own.
    PanelShadow(QWidget& panel, double radius);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void follow();

    QWidget& panel_;
    double radius_;
    QPixmap drawn_; ///< for the present size
};

} // namespace flowtide
