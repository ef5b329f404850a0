#pragma once

#include <QJsonObject>
#include <QString>

namespace orvenal {

struct TableStatistics;

/// Statistics of the columns of a table for a terminal of that width.
QString statisticsText(const TableStatistics &statistics, int width);

/// The same for other programs; docs/results.md describes the keys.
QJsonObject tableStatisticsToJson(const TableStatistics &statistics);

}  // namespace orvenal
