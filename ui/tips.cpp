#include "ui/tips.h"

#include "ui/theme.h"

#include <QHelpEvent>
#include <QStringList>
#include <QTextLayout>
#include <QTextOption>
#include <QToolTip>
#include <QWidget>

namespace flowtide {

namespace {
constexpr double widest = 320 - 2 * 8; ///< pixels of a line, between the tip's paddings
} // namespace

Tips::Tips() {
    QToolTip::setFont(theme::font(theme::Type::small));
}

bool Tips::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ToolTip) return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->toolTip().isEmpty()) return false;
    const auto* help = static_cast<QHelpEvent*>(event);
    QToolTip::showText(help->globalPos(), broken(widget->toolTip()), widget, {}, widget->toolTipDuration());
    return true;
}

QString Tips::broken(const QString& text) {
    QTextLayout layout(text, theme::font(theme::Type::small));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // the names of files have no words
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(widest);
        lines << text.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines.join(u'\n');
}

} // namespace flowtide
