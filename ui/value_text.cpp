#include "ui/value_text.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>

namespace flowtide::valueText {

namespace {

/// So near to a whole number, or to a named place, is at it.
constexpr double labelTolerance = 0.005;

struct NamedPlace {
    double position;
    const char* name;
};
constexpr std::array<NamedPlace, 3> namedPlaces{{{0, QT_TRANSLATE_NOOP("ValueText", "Left")},
                                                 {0.5, QT_TRANSLATE_NOOP("ValueText", "Center")},
                                                 {1, QT_TRANSLATE_NOOP("ValueText", "Right")}}};

QString translated(const char* text) {
    return QCoreApplication::translate("ValueText", text);
}

/// A number as people type it: with a point or a comma.
std::optional<double> number(const QString& text) {
    bool isNumber = false;
    const double value = QLocale::c().toDouble(text.trimmed().replace(u',', u'.'), &isNumber);
    if (!isNumber || !std::isfinite(value)) return {};
    return value;
}

/// Without a unit at its end, if it has that one.
QString without(QString text, const QString& unit) {
    text = text.trimmed();
    if (text.endsWith(unit, Qt::CaseInsensitive)) text.chop(unit.size());
    return text.trimmed();
}

} // namespace

QString timeCode(double seconds) {
    const qint64 milliseconds = std::llround(std::max(seconds, 0.0) * 1000);
    const qint64 whole = milliseconds / 1000;
    const QString tail = QStringLiteral("%1:%2.%3")
                             .arg(whole / 60 % 60, 2, 10, QLatin1Char('0'))
                             .arg(whole % 60, 2, 10, QLatin1Char('0'))
                             .arg(milliseconds % 1000, 3, 10, QLatin1Char('0'));
    return whole < 3600 ? tail : QStringLiteral("%1:%2").arg(whole / 3600).arg(tail);
}

std::optional<double> parsedTime(const QString& text) {
    const QStringList parts = without(text, QStringLiteral("s")).split(u':');
    if (parts.size() > 3) return {};
    double seconds = 0;
    for (const QString& part : parts) {
        const auto value = number(part);
        if (!value || *value < 0) return {};
        seconds = seconds * 60 + *value;
    }
    return seconds;
}

QString speed(double speed) {
    const double whole = std::round(speed);
    if (std::abs(speed - whole) < labelTolerance || speed >= 10) return QStringLiteral("%1x").arg(whole, 0, 'f', 0);
    if (speed < 1) return QStringLiteral("%1x").arg(speed, 0, 'g', 2);
    return QStringLiteral("%1x").arg(speed, 0, 'f', 1);
}

std::optional<double> parsedSpeed(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.endsWith(u'%')) {
        const auto percent = number(without(trimmed, QStringLiteral("%")));
        return percent ? std::optional(*percent / 100) : std::nullopt;
    }
    return number(without(without(trimmed, QStringLiteral("x")), QStringLiteral("×")));
}

QString position(double position) {
    for (const NamedPlace& place : namedPlaces)
        if (std::abs(position - place.position) <= labelTolerance) return translated(place.name);
    return QStringLiteral("%1%").arg(std::lround(position * 100));
}

std::optional<double> parsedPosition(const QString& text) {
    for (const NamedPlace& place : namedPlaces)
        if (text.trimmed().compare(translated(place.name), Qt::CaseInsensitive) == 0) return place.position;
    const auto percent = number(without(text, QStringLiteral("%")));
    return percent ? std::optional(*percent / 100) : std::nullopt;
}

QString percent(double share) {
    return QStringLiteral("%1%").arg(static_cast<int>(std::floor(std::clamp(share, 0.0, 1.0) * 100 + 1e-9)));
}

QString path(const std::filesystem::path& path) {
    return QString::fromLocal8Bit(path.native().c_str(), static_cast<qsizetype>(path.native().size()));
}

std::filesystem::path path(const QString& path) {
    return path.toLocal8Bit().toStdString();
}

QString fileName(const std::filesystem::path& file) {
    return path(file.filename());
}

} // namespace flowtide::valueText
