#include "ui/panes/project_date.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTimeZone>
#include <cmath>

namespace flowtide {

QString projectDate(const ReferenceDate& saved, const QDateTime& now) {
    const QDateTime origin(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
    const QDateTime date = origin.addMSecs(std::llround(saved.seconds * 1000)).toTimeZone(now.timeZone());
    const QString time = date.toString(QStringLiteral("HH:mm"));
    const qint64 days = date.date().daysTo(now.date());
    if (days == 0) return QCoreApplication::translate("ProjectDate", "Today, %1").arg(time);
    if (days == 1) return QCoreApplication::translate("ProjectDate", "Yesterday, %1").arg(time);
    const QString format =
        date.date().year() == now.date().year() ? QStringLiteral("d MMMM") : QStringLiteral("d MMMM yyyy");
    return QLocale::c().toString(date.date(), format);
}

} // namespace flowtide
