#include "app/study/Statistics.h"

#include "app/study/RunContext.h"
#include "geos/data/NgdADataSet.h"
#include "geos/stats/NgcQuickStat.h"
#include "geos/stats/NgmMultivariateStatistics.h"

#include <QObject>

namespace orvenal {

namespace {

NgmMultivariateStatistics compute(const NgdADataSet &dataSet, bool withPairs,
                                  const RunContext &context)
{
  NgcQuickStat calculator(Nbd::Role::V);
  calculator.setFullStatFlag(true);
  calculator.setBivariateStatFlag(withPairs);
  calculator.setInputDataSet(dataSet);
  context.run(calculator, QObject::tr("Statistics"), dataSet.getNSamples(), QObject::tr("values"),
              RunContext::SIDE_STEP);
  return calculator.getMultivariateStatistics();
}

}  // namespace

NgmMultivariateStatistics computeMultivariateStatistics(const NgdADataSet &dataSet,
                                                        const RunContext &context)
{
  return compute(dataSet, true, context);
}

QList<NbcStatMono> computeStatistics(const NgdADataSet &dataSet, const RunContext &context)
{
  const NgmMultivariateStatistics result = compute(dataSet, false, context);
  QList<NbcStatMono> statistics;
  for (int i = 0; i < result.getNVariables(); ++i)
    statistics << result.getConstUnivariateStats(i);
  return statistics;
}

}  // namespace orvenal
