// What is said of an export.
#pragma once

#include <QString>
#include <vector>

namespace flowtide::exportTexts {

/// "About 5 seconds left".
QString timeLeft(double seconds);

struct ReportLine {
    QString name; ///< with its colon; empty: a line without a name
    QString value;
};
/// A report's details, line by line.
std::vector<ReportLine> reportLines(const QString& details);

/// Why an export of a clip of this codec is in another one.
QString codecCannotBeMatched(const QString& codecName);

} // namespace flowtide::exportTexts
