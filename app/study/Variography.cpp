#include "app/study/Variography.h"

#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcVariogramExp.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QObject>

#include <numeric>

namespace orvenal {

namespace {

/// What curves other than variograms are compared to; undefined for those that have no sill.
double pseudoSill(const NgmVariogramExpData &data, const NgmEVarioExp &curve, int i, int j)
{
  return data.hasPseudoSill(curve) ? data.getPseudoSillMatrix(curve)(i, j) : NbbGlobal::D_FFFF;
}

/// A cross variogram tends to the covariance of the samples that have both variables.
double covariance(const NgmMultivariateStatistics &statistics, int i, int j)
{
  return statistics.getConstBivariateStats(i, j).getNDefined() > 0
             ? statistics.getVarianceCovarianceMatrixHeterotopic()(i, j)
             : NbbGlobal::D_FFFF;
}

VariogramCurve curveOf(const NgmVariogramExpData &data, int direction, const NgmEVarioExp &curve,
                       int i, int j, bool isOmnidirectional)
{
  VariogramCurve result;
  result.name =
      isOmnidirectional ? QObject::tr("all directions") : data.getDirectionName(direction);
  result.isOmnidirectional = isOmnidirectional;
  result.direction = data.getDirectionVector(direction);
  result.distances = data.extractDistances(direction, curve, i, j);
  result.values = data.extractVarioValues(direction, curve, i, j);
  const QVector<qint64> pairs = data.getNumberOfPairs(direction, false, i, j);
  const QVector<bool> masked = data.getMasked(direction, false, i, j);
  for (int lag = 0; lag < pairs.size(); ++lag) {
    if (!masked[lag])
      result.pairs << pairs[lag];
  }
  return result;
}

VariogramSet setOf(const NgmVariogramExpData &data, const VariogramRequest &request,
                   const NgmMultivariateStatistics &statistics, int i, int j)
{
  VariogramSet set;
  set.first = i;
  set.second = j;
  set.sill = request.curve == NgmEVarioExp::VARIOGRAM ? covariance(statistics, i, j)
                                                      : pseudoSill(data, request.curve, i, j);
  set.hasSill = NbbGlobal::isDefined(set.sill);
  const bool isOmnidirectional = request.nRegular == 0 && request.directions.isEmpty();
  for (int direction = 0; direction < data.getNDirections(); ++direction)
    set.curves << curveOf(data, direction, request.curve, i, j, isOmnidirectional);
  return set;
}

}  // namespace

qint64 VariogramSet::countPairs() const
{
  qint64 count = 0;
  for (const VariogramCurve &curve : curves)
    count = std::accumulate(curve.pairs.begin(), curve.pairs.end(), count);
  return count;
}

Variography computeVariograms(const Job &job, const Samples &samples,
                              const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                              const NgmMultivariateStatistics &statistics,
                              const RunContext &context)
{
  const VariogramRequest request = job.variogram.value_or(VariogramRequest());
  NgmVariogramExp experiment = makeVariogramExp(request, samples);
  experiment.setNVariables(job.getNVariables());
  NgcVariogramExp calculator;
  calculator.setDataSet(makeVariableDataSet(job, provider));
  calculator.setVarioExp(experiment);
  calculator.setStatistics(statistics);
  context.run(calculator, QObject::tr("Variograms"), samples.getCount(), QObject::tr("samples"));

  const NgmVariogramExpData &results = calculator.getResults();
  Variography variography;
  variography.curveName = request.curve.getLabel();
  variography.isVariogram = request.curve == NgmEVarioExp::VARIOGRAM;
  variography.lag = experiment.getDirection(0).getLagLong();
  variography.nVariables = job.getNVariables();
  for (int second = 0; second < variography.nVariables; ++second) {
    for (int first = 0; first <= second; ++first)
      variography.sets << setOf(results, request, statistics, first, second);
  }
  variography.data = QSharedPointer<NgmVariogramExpData>::create(results);
  return variography;
}

}  // namespace orvenal
