#include "ui/panes/drop_target.h"

#include "ui/accessible_role.h"
#include "ui/icons.h"
#include "ui/key_names.h"
#include "ui/theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPen>

namespace flowtide {

namespace {
constexpr double targetRadius = 12;
constexpr int buttonTop = 160;
constexpr double dash = 6;
} // namespace

DropTarget::DropTarget(QWidget* parent)
    : QWidget(parent) {
    setFixedHeight(targetHeight);
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(tr("Open a video to edit"));
    open_ = new Button(ButtonKind::primary, tr("Open…"), QStringLiteral("open"), this);
    open_->setToolTip(keyNames::local(tr("Open a clip or project (⌘O)")));
    open_->resize(open_->sizeHint());
}

QString DropTarget::dropSentence(const QString& name, bool isOpenable) {
    return isOpenable ? tr("Drop to open “%1”").arg(name) : tr("Only MOV, MP4, M4V and saved projects open here.");
}

void DropTarget::showDrop(const QString& name, bool isOpenable) {
    dropName_ = name;
    isOpenable_ = isOpenable;
    showButton();
}

void DropTarget::showOpening(const QString& sentence) {
    opening_ = sentence;
    showButton();
}

void DropTarget::showButton() {
    open_->setVisible(dropName_.isEmpty() && opening_.isEmpty());
    update();
}

void DropTarget::resizeEvent(QResizeEvent*) {
    open_->move((width() - open_->width()) / 2, buttonTop);
}

void DropTarget::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool hasDrop = !dropName_.isEmpty();
    const bool isRefused = hasDrop && !isOpenable_;
    const QColor ground = hasDrop && !isRefused ? control : pane;
    if (hasDrop) {
        drawBox(painter, rect(), targetRadius, ground, isRefused ? attention : theme::text, 2);
    } else {
        QPen pen(border, 1);
        pen.setDashPattern({dash, dash});
        painter.setPen(pen);
        painter.setBrush(ground);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), targetRadius, targetRadius);
    }
    const auto line = [&](double top, double height) { return QRectF(24, top, width() - 48.0, height); };
    icons::draw(painter, QStringLiteral("import"), line(40, 32), 32, isRefused ? attention : text2);
    if (hasDrop || !opening_.isEmpty()) {
        const QString words = hasDrop ? dropSentence(dropName_, isOpenable_) : opening_;
        const QFontMetricsF metrics(theme::font(Type::headline));
        drawLine(painter, line(96, 24), Qt::AlignHCenter, Type::headline, theme::text,
                 metrics.elidedText(words, Qt::ElideMiddle, width() - 48.0));
        return;
    }
    drawLine(painter, line(88, 24), Qt::AlignHCenter, Type::headline, theme::text, tr("Open a video to edit"));
    drawLine(painter, line(120, 20), Qt::AlignHCenter, Type::lead, text2,
             tr("Drag a video here to adjust its speed curve and keyframe the crop’s center position."));
    drawLine(painter, line(208, 16), Qt::AlignHCenter, Type::small, text2,
             keyNames::local(tr("MOV · MP4 · M4V · Saved projects     ⌘O")));
}

} // namespace flowtide
