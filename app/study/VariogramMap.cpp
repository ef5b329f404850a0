#include "app/study/VariogramMap.h"

#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcVarioMap.h"
#include "geos/stats/NgcVariogram.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"

#include <QObject>

namespace orvenal {

namespace {

constexpr int nRings = 12;
constexpr int nSectors = 18;  // of the half-turn
constexpr int nPixels = 301;
constexpr int nCloudCells = 120;

NgdDataSetPoints dataSetOf(const QSharedPointer<NbpMemoryProviderPointsW> &provider)
{
  NgdDataSetPoints data;
  data.setDataProvider(provider);
  data.assignVariable(Nbd::Role::V, provider->getIdFromName(sampleValueName()));
  return data;
}

NgmVariogramExp experimentOf(const Job &job, const Samples &samples)
{
  return makeVariogramExp(job.variogram.value_or(VariogramRequest()), samples);
}

VariogramMap imageOf(const NgmVarioMap &map, double radius)
{
  VariogramMap image;
  image.nPixels = nPixels;
  image.radius = radius;
  const NbdVariableDouble &values = map.getVarioSum(0, 0);
  const double step = 2. * radius / (nPixels - 1);
  for (int row = 0; row < nPixels; ++row) {
    for (int column = 0; column < nPixels; ++column) {
      const NbgVector3D h(column * step - radius, row * step - radius, 0.);
      const qint64 cell = map.locate(map.oriented(map.toFrame(h)));
      image.values.push_back(cell < 0 ? NbbGlobal::D_FFFF : values.getArrayConst()[cell]);
    }
  }
  return image;
}

}  // namespace

VariogramMap computeVariogramMap(const Job &job, const Samples &samples,
                                 const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                                 const RunContext &context)
{
  const double radius = experimentOf(job, samples).getMaximumDistance();
  NgcVarioMap calculator(nRings, nSectors, 1, NbgVector3D(radius, radius, radius), NbgRotation(), 1,
                         Nbd::Role::V);
  calculator.setInputDataSet(dataSetOf(provider));
  context.run(calculator, QObject::tr("Variogram map"), samples.getCount(), QObject::tr("samples"),
              RunContext::SIDE_STEP);
  return imageOf(calculator.getGvm(), radius);
}

VariogramCloud computeVariogramCloud(const Job &job, const Samples &samples,
                                     const QSharedPointer<NbpMemoryProviderPointsW> &provider,
                                     const NgmMultivariateStatistics &statistics,
                                     const RunContext &context)
{
  VariogramRequest request = job.variogram.value_or(VariogramRequest());
  request.nRegular = 0;
  request.directions.clear();
  NgmVariogramExp experiment = makeVariogramExp(request, samples);
  experiment.setComputeCloud(true);
  NgmVariogramCloudParameters parameters;
  parameters.setImageSize(nCloudCells, nCloudCells);
  NgcVariogram calculator(Nbd::Role::V);
  calculator.setInputDataSet(dataSetOf(provider));
  calculator.setVarioExp(experiment);
  calculator.setStatistics(statistics.extractMultiVariableStats(QList<int>{0}));
  calculator.setVariogramCloudParameters(parameters);
  context.run(calculator, QObject::tr("Variogram cloud"), samples.getCount(),
              QObject::tr("samples"), RunContext::SIDE_STEP);

  const NgmVariogramCloudDensity &density = calculator.getResults().getCloudDensity(0, false, 0, 0);
  VariogramCloud cloud;
  cloud.nDistances = density.getNx();
  cloud.nValues = density.getNy();
  cloud.maxDistance = density.getNx() * density.getGeometry().getCellSize().x();
  cloud.maxValue = density.getNy() * density.getGeometry().getCellSize().y();
  for (int i = 0; i < cloud.nDistances; ++i) {
    for (int j = 0; j < cloud.nValues; ++j)
      cloud.counts.push_back(density.getCount(i, j));
  }
  return cloud;
}

}  // namespace orvenal
