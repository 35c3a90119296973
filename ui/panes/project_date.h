// When a project was saved, as lists say it.
#pragma once

#include "project/reference_date.h"

#include <QDateTime>
#include <QString>

namespace flowtide {

/// "Today, 14:32", "Yesterday, 18:47", "18 November", "18 November 2024".
QString projectDate(const ReferenceDate& saved, const QDateTime& now);

} // namespace flowtide
