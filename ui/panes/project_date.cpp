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
    const QString format = date.date().year() == now.date().year()
                               ? QCoreApplication::translate("ProjectDate", "d MMMM")
                               : QCoreApplication::translate("ProjectDate", "d MMMM yyyy");
    // Months are named in the window's language, which is not always the desktop's.
    const QLocale language(QCoreApplication::translate("ProjectDate", "en", "the language's code"));
    return language.toString(date.date(), format);
}

} // namespace flowtide
