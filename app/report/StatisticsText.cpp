#include "app/report/StatisticsText.h"

#include "app/base/NumberText.h"
#include "app/console/TextTable.h"
#include "app/report/Describe.h"
#include "app/report/ResultJson.h"
#include "app/study/TableStatistics.h"

#include <QJsonArray>
#include <QObject>

namespace orvenal {

namespace {

QStringList columnOf(const TableStatistics::Variable &variable)
{
  const NbcStatMono &statistics = variable.statistics;
  return {variable.label,
          QString::number(statistics.getNDefined()),
          QString::number(statistics.getNTotal() - statistics.getNDefined()),
          numberText(statistics.getMinimum()),
          numberText(variable.lowerQuartile),
          numberText(variable.median),
          numberText(statistics.getMean()),
          numberText(variable.upperQuartile),
          numberText(statistics.getMaximum()),
          numberText(statistics.getStandardDeviation()),
          numberText(statistics.getSkewness())};
}

QList<QStringList> statisticsRows(const TableStatistics &statistics)
{
  const QStringList names = {QString(),
                             QObject::tr("defined"),
                             QObject::tr("undefined"),
                             QObject::tr("minimum"),
                             QObject::tr("lower quartile"),
                             QObject::tr("median"),
                             QObject::tr("mean"),
                             QObject::tr("upper quartile"),
                             QObject::tr("maximum"),
                             QObject::tr("std. dev."),
                             QObject::tr("skewness")};
  QList<QStringList> rows;
  for (const QString &name : names)
    rows << QStringList{name};
  for (const TableStatistics::Variable &variable : statistics.variables) {
    const QStringList column = columnOf(variable);
    for (int i = 0; i < rows.size(); ++i)
      rows[i] << column[i];
  }
  return rows;
}

QList<QStringList> correlationRows(const TableStatistics &statistics)
{
  QStringList header = {QObject::tr("correlation")};
  for (const TableStatistics::Variable &variable : statistics.variables)
    header << variable.label;
  QList<QStringList> rows = {header};
  for (std::size_t i = 0; i < statistics.correlations.size(); ++i) {
    QStringList row = {statistics.variables[int(i)].label};
    for (const double rho : statistics.correlations[i])
      row << numberText(rho);
    rows << row;
  }
  return rows;
}

}  // namespace

QString statisticsText(const TableStatistics &statistics, int width)
{
  const QString text = foldedColumns(statisticsRows(statistics), width);
  return statistics.variables.size() < 2
             ? text
             : text + QStringLiteral("\n\n") + foldedColumns(correlationRows(statistics), width);
}

QJsonObject tableStatisticsToJson(const TableStatistics &statistics)
{
  QJsonArray variables;
  QJsonArray correlations;
  for (const TableStatistics::Variable &variable : statistics.variables) {
    QJsonObject object = statisticsToJson(variable.statistics);
    object.insert(QStringLiteral("name"), variable.label);
    object.insert(QStringLiteral("lowerQuartile"), jsonNumber(variable.lowerQuartile));
    object.insert(QStringLiteral("median"), jsonNumber(variable.median));
    object.insert(QStringLiteral("upperQuartile"), jsonNumber(variable.upperQuartile));
    variables.append(object);
  }
  for (const std::vector<double> &row : statistics.correlations) {
    QJsonArray values;
    for (const double rho : row)
      values.append(jsonNumber(rho));
    correlations.append(values);
  }
  return {{QStringLiteral("variables"), variables}, {QStringLiteral("correlations"), correlations}};
}

}  // namespace orvenal
