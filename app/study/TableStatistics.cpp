#include "app/study/TableStatistics.h"

#include "app/io/TableReader.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "app/study/Statistics.h"
#include "basic/calc/NbcAlgorithm.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgmMultivariateStatistics.h"

#include <QObject>

namespace orvenal {

namespace {

using Columns = std::vector<std::vector<double>>;

Columns readColumns(const JobTable &table, const QList<JobVariable> &variables)
{
  const auto reader = TableReader::open(table.file, table.shown, table.format);
  std::vector<int> places;
  for (const JobVariable &variable : variables)
    places.push_back(reader->findColumn(variable.column, QObject::tr("a variable")));
  Columns columns(places.size());
  while (reader->next()) {
    for (std::size_t i = 0; i < places.size(); ++i)
      columns[i].push_back(readValue(*reader, places[i], variables[int(i)].transform));
  }
  if (columns.empty() || columns.front().empty())
    throw NbeUserError(QObject::tr("%1: no rows below the header").arg(table.shown));
  return columns;
}

/// All columns under the role of variables, at one place.
NgdDataSetPoints makeDataSet(const Columns &columns)
{
  const std::vector<double> place(columns.front().size(), 0.);
  auto provider =
      QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, qint64(place.size()));
  provider->addXVariable(place);
  provider->addYVariable(place);
  NgdDataSetPoints data;
  for (std::size_t i = 0; i < columns.size(); ++i)
    provider->addVariable(QString::number(i), columns[i]);
  data.setDataProvider(provider);
  for (std::size_t i = 0; i < columns.size(); ++i)
    data.assignVariable(Nbd::Role::V, provider->getIdFromName(QString::number(i)));
  return data;
}

}  // namespace

TableStatistics computeTableStatistics(const JobTable &table, const QList<JobVariable> &variables,
                                       const RunContext &context)
{
  const Columns columns = readColumns(table, variables);
  const NgmMultivariateStatistics statistics =
      computeMultivariateStatistics(makeDataSet(columns), context);
  TableStatistics result;
  result.nRecords = qint64(columns.front().size());
  const int n = variables.size();
  for (int i = 0; i < n; ++i) {
    const std::vector<double> &values = columns[std::size_t(i)];
    const QVector<double> quartiles =
        NbcAlgorithm::calculateQuantiles(values.data(), int(values.size()), {0.25, 0.5, 0.75});
    result.variables.append({variables[i].getLabel(), statistics.getConstUnivariateStats(i),
                             quartiles[0], quartiles[1], quartiles[2]});
    result.correlations.emplace_back();
    for (int j = 0; j < n; ++j)
      result.correlations.back().push_back(i == j ? 1. : statistics.getRho(i, j));
  }
  return result;
}

}  // namespace orvenal
