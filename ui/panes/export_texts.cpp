#include "ui/panes/export_texts.h"

#include "ui/key_names.h"

#include <QCoreApplication>
#include <QStringList>
#include <cmath>

namespace flowtide::exportTexts {

QString timeLeft(double seconds) {
    const auto whole = static_cast<long long>(std::llround(std::max(seconds, 1.0)));
    if (whole == 1) return QCoreApplication::translate("ExportTexts", "About a second left");
    if (whole < 60) return QCoreApplication::translate("ExportTexts", "About %1 seconds left").arg(whole);
    const long long minutes = std::llround(seconds / 60);
    if (minutes == 1) return QCoreApplication::translate("ExportTexts", "About a minute left");
    if (minutes < 60) return QCoreApplication::translate("ExportTexts", "About %1 minutes left").arg(minutes);
    return QCoreApplication::translate("ExportTexts", "About %1 h %2 min left").arg(minutes / 60).arg(minutes % 60);
}

std::vector<ReportLine> reportLines(const QString& details) {
    std::vector<ReportLine> lines;
    for (const QString& line : details.split(u'\n', Qt::SkipEmptyParts)) {
        const qsizetype end = line.indexOf(QStringLiteral(": "));
        if (end < 0)
            lines.push_back({{}, line});
        else
            lines.push_back({line.left(end + 1), line.mid(end + 2)});
    }
    return lines;
}

QString codecCannotBeMatched(const QString& codecName) {
    return QCoreApplication::translate(
               "ExportTexts",
               "%1 is not supported for source-matched export. Loftwell Video can try HEVC / H.265 instead, then "
               "verify its dimensions, frame rate, bit depth, color tags, audio, and duration. The export may "
               "still fail if %2 cannot decode the source codec.")
        .arg(codecName, keyNames::thisSystem());
}

} // namespace flowtide::exportTexts
