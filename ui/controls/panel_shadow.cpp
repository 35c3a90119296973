#include "ui/controls/panel_shadow.h"

#include <QEvent>
#include <QPainter>
#include <cmath>

namespace flowtide {

namespace {
constexpr int reach = 24;
constexpr int drop = 8;
constexpr double darkness = 0.45;

/// Rounded boxes one within the other; each adds what a blurred edge gains on a pixel.
QPixmap shadowOf(QSize panel, double radius, double scale) {
    QPixmap drawn(QSize(panel.width() + 2 * reach, panel.height() + 2 * reach) * scale);
    drawn.setDevicePixelRatio(scale);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    double covered = 0;
    for (int inset = 0; inset < 2 * reach; ++inset) {
        const double x = (inset + 0.5) / (2 * reach);
        const double wanted = darkness * x * x * (3 - 2 * x);
        painter.setBrush(QColor::fromRgbF(0, 0, 0, static_cast<float>((wanted - covered) / (1 - covered))));
        covered = wanted;
        const QRectF box =
            QRectF(0, 0, panel.width() + 2 * reach, panel.height() + 2 * reach).adjusted(inset, inset, -inset, -inset);
        if (box.width() <= 0 || box.height() <= 0) break;
        const double corner = std::max(radius + reach - inset, 2.0);
        painter.drawRoundedRect(box, corner, corner);
    }
    return drawn;
}
} // namespace

PanelShadow::PanelShadow(QWidget& panel, double radius)
    : QWidget(panel.parentWidget())
    , panel_(panel)
    , radius_(radius) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    panel.installEventFilter(this);
    follow();
}

bool PanelShadow::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::ShowToParent:
    case QEvent::HideToParent:
    case QEvent::ZOrderChange:
        follow();
        break;
    default:
        break;
    }
    return false;
}

void PanelShadow::follow() {
    setVisible(!panel_.isHidden());
    if (panel_.isHidden()) return;
    setGeometry(panel_.geometry().adjusted(-reach, drop - reach, reach, drop + reach));
    stackUnder(&panel_);
}

void PanelShadow::paintEvent(QPaintEvent*) {
    const QSize wanted = size() * devicePixelRatioF();
    if (drawn_.size() != wanted) drawn_ = shadowOf(panel_.size(), radius_, devicePixelRatioF());
    QPainter painter(this);
    painter.drawPixmap(0, 0, drawn_);
}

} // namespace flowtide
