#include "app/study/Variography.h"

#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Samples.h"
#include "app/study/Statistics.h"
#include "basic/base/NbbGlobal.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcVariogramExp.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <QObject>

namespace orvenal {

namespace {

/// The variance of the samples is what a variogram reaches; other curves have a sill of their own
/// kind, or none.
double sillOf(const NgmVariogramExpData &data, const NgmEVarioExp &curve,
              const NgmMultivariateStatistics &statistics)
{
  return curve == NgmEVarioExp::VARIOGRAM ? statistics.getConstUnivariateStats(0).getVariance()
                                          : data.getPseudoSill(curve, 0);
}

VariogramCurve curveOf(const NgmVariogramExpData &data, int direction, const NgmEVarioExp &curve,
                       bool isOmnidirectional)
{
  VariogramCurve result;
  result.name =
      isOmnidirectional ? QObject::tr("all directions") : data.getDirectionName(direction);
  result.isOmnidirectional = isOmnidirectional;
  result.direction = data.getDirectionVector(direction);
  result.distances = data.extractDistances(direction, curve, 0, 0);
  result.values = data.extractVarioValues(direction, curve, 0, 0);
  const QVector<qint64> pairs = data.getNumberOfPairs(direction, false, 0, 0);
  const QVector<bool> masked = data.getMasked(direction, false, 0, 0);
  for (int lag = 0; lag < pairs.size(); ++lag) {
    if (!masked[lag])
      result.pairs << pairs[lag];
  }
  return result;
}

}  // namespace

Variography computeVariograms(const Job &job, const Samples &samples,
                              const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                              const RunContext &context)
{
  const VariogramRequest request = job.variogram.value_or(VariogramRequest());
  const NgmVariogramExp experiment = makeVariogramExp(request, samples);
  NgdDataSetPoints data;
  data.setDataProvider(provider);
  data.assignVariable(Nbd::Role::V, provider->getIdFromName(sampleValueName()));
  const NgmMultivariateStatistics statistics = computeMultivariateStatistics(data, context);
  NgcVariogramExp calculator;
  calculator.setDataSet(data);
  calculator.setVarioExp(experiment);
  calculator.setStatistics(statistics);
  context.run(calculator, QObject::tr("Variograms"), samples.getCount(), QObject::tr("samples"));

  const NgmVariogramExpData &results = calculator.getResults();
  Variography variography;
  variography.curveName = request.curve.getLabel();
  variography.isVariogram = request.curve == NgmEVarioExp::VARIOGRAM;
  variography.sill = sillOf(results, request.curve, statistics);
  variography.hasSill = NbbGlobal::isDefined(variography.sill);
  variography.lag = experiment.getDirection(0).getLagLong();
  for (int direction = 0; direction < results.getNDirections(); ++direction)
    variography.curves << curveOf(results, direction, request.curve,
                                  request.nRegular == 0 && request.directions.isEmpty());
  variography.data = QSharedPointer<NgmVariogramExpData>::create(results);
  return variography;
}

}  // namespace orvenal
