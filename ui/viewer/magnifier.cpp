#include "ui/viewer/magnifier.h"

#include "ui/controls/focus_ring.h"
#include "ui/icons.h"
#include "ui/theme.h"

#include <QMenu>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide {

namespace {

constexpr std::array<double, 2> magnifications{1, 2};
constexpr double chevron = 14;
constexpr int buttonHeight = 24;

QString label(std::optional<double> magnification) {
    return magnification ? QStringLiteral("%1%").arg(std::lround(*magnification * 100)) : Magnifier::tr("Fit");
}

} // namespace

Magnifier::Magnifier(QWidget* parent)
    : QPushButton(label({}), parent) {
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, theme::controlRadius);
    setAccessibleName(tr("Magnifier: %1").arg(text()));
    setToolTip(tr("Size of the picture"));
    connect(this, &QPushButton::clicked, this, &Magnifier::openMenu);
    resize(sizeHint());
}

void Magnifier::showMagnification(std::optional<double> magnification) {
    if (magnification_ == magnification) return;
    magnification_ = magnification;
    setText(label(magnification));
    setAccessibleName(tr("Magnifier: %1").arg(text()));
    update();
}

void Magnifier::setOnPicture(bool isOnPicture) {
    if (isOnPicture_ == isOnPicture) return;
    isOnPicture_ = isOnPicture;
    update();
}

QSize Magnifier::sizeHint() const {
    const double words = std::max(theme::tabularWidth(theme::Type::body, label(magnifications.back())),
                                  theme::tabularWidth(theme::Type::body, label({})));
    return {static_cast<int>(std::ceil(words + 2 * padding + chevron + 4)), buttonHeight};
}

void Magnifier::openMenu() {
    QMenu menu(this);
    const auto add = [&](std::optional<double> magnification) {
        QAction* action = menu.addAction(label(magnification), this, [this, magnification] {
            if (onChoice) onChoice(magnification);
        });
        action->setCheckable(true);
        action->setChecked(magnification == magnification_);
        action->setEnabled(!magnification || !canMagnify || canMagnify(*magnification));
    };
    add({});
    for (const double magnification : magnifications)
        add(magnification);
    menu.exec(mapToGlobal(QPoint(width() - menu.sizeHint().width(), height() + 4)));
}

void Magnifier::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    const QColor rest = isOnPicture_ ? pane : faded(control, 0);
    drawBox(painter, rect(), controlRadius, hover_.color(rest, control, raised));
    const QColor ink = hover_.color(text2, theme::text, theme::text);
    const QRectF words(padding, 0, width() - 2 * padding - chevron - 4, height());
    drawTabular(painter, words, Qt::AlignRight, Type::body, ink, QPushButton::text());
    icons::draw(painter, QStringLiteral("chevron-down"), QRectF(width() - padding - chevron, 0, chevron, height()),
                chevron, ink);
}

} // namespace flowtide
