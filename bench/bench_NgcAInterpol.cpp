// A grid of 100 million nodes kriged through buffers into a provider that keeps nothing: time per
// target and the peak memory of the process. The number of values written is checked, and their
// mean against that of a coarser grid over the same square.

#include "BenchPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

#include <QMutex>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>

namespace {

const QString writtenId = QStringLiteral("written");

/// A grid with one variable that forgets what is written to it, but for sums.
class ForgetfulGrid : public NbpMemoryProviderGridW
{
public:
  using NbpMemoryProviderGridW::NbpMemoryProviderGridW;

  bool isMacro(const QString &id) const override
  {
    return id != writtenId && NbpMemoryProviderGridW::isMacro(id);
  }
  bool testVariable(const QString &id, const NbdVarTypeFlags &flags) const override
  {
    return id == writtenId || NbpMemoryProviderGridW::testVariable(id, flags);
  }
  bool getVariableType(const QString &id, Nbd::EVariableType &type) const override
  {
    if (id != writtenId)
      return NbpMemoryProviderGridW::getVariableType(id, type);
    type = Nbd::TYPE_DOUBLE;
    return true;
  }
  bool getDetails(const QString &id, NbdVariableDetails &details) const override
  {
    if (id != writtenId)
      return NbpMemoryProviderGridW::getDetails(id, details);
    details = NbdVariableDetails(id);
    return true;
  }
  bool openVariable(const QString &id, Nbd::EAccessType access) override
  {
    return id == writtenId || NbpMemoryProviderGridW::openVariable(id, access);
  }
  void closeVariable(const QString &id) override
  {
    if (id != writtenId)
      NbpMemoryProviderGridW::closeVariable(id);
  }
  bool readGrid(const QString &id, const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                const NbiIntervalIntSmall &k, NbdAVariable &values) const override
  {
    return id == writtenId || NbpMemoryProviderGridW::readGrid(id, i, j, k, values);
  }
  bool writeGrid(const QString &, const NbiIntervalIntSmall &, const NbiIntervalIntSmall &,
                 const NbiIntervalIntSmall &, const NbdAVariable &values) override
  {
    const double *array = static_cast<const NbdVariableDouble &>(values).getArrayConst();
    const QMutexLocker locker(&_mutex);
    for (int node = 0; node < values.getNValues(); ++node) {
      sum += array[node];
      nDefined += NbbGlobal::isDefined(array[node]);
    }
    return true;
  }

  double sum = 0.;
  qint64 nDefined = 0;

private:
  QMutex _mutex;
};

double peakMegabytes()
{
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return double(usage.ru_maxrss) / 1024.;
}

/// `side` x `side` nodes over the square of the samples, four neighbors each.
double krige(int side, int nThreads)
{
  const bench::Points points(10000);
  const auto samples =
      QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, 10000);
  samples->addXVariable(points.x);
  samples->addYVariable(points.y);
  const QString z = samples->addVariable(QStringLiteral("z"), points.z);
  NgdDataSetPoints input;
  input.setDataProvider(samples);
  input.assignVariable(Nbd::Role::V, z);

  NbgGeomGrid geometry;
  geometry.setNodesNumber2D(side, side);
  geometry.setCellSize(NbgVector3D(1000. / side, 1000. / side, 1.));
  geometry.setOriginCentered(NbgVector3D(500. / side, 500. / side, 0.));
  const auto grid = QSharedPointer<ForgetfulGrid>::create(geometry);
  NgdDataSetGrid output;
  output.setDataProvider(grid);
  output.assignVariable(Nbd::Role::V, writtenId);

  NgmVModel model(1);
  model.setNugget(0, 0, 0.1);
  model.setRanges(model.addStructure(QStringLiteral("Spherical"), 0.9),
                  NbgVector3D(200., 200., 200.));
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(200., 200., 200.));
  neighborhood.setSectors(1, 4, false);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input);
  kriging.setOutputDataSet(output);
  kriging.setVarioModel(model);
  kriging.setUsingMovingNeighborhood(neighborhood);
  kriging.setNThread(nThreads);
  if (kriging.execute() != NbcAProgress::COMPLETED || grid->nDefined != qint64(side) * side)
    return NAN;
  return grid->sum / (double(side) * side);
}

void BM_HugeGrid(benchmark::State &state)
{
  NgcACalculator::initMKLThreading();
  const int side = int(state.range(0));
  const double expected = krige(500, 1);
  const double before = peakMegabytes();
  double mean = 0.;
  for (auto _ : state)
    mean = krige(side, int(state.range(1)));
  // Both are means of one smooth field over the same square.
  if (!(std::abs(mean - expected) < 1e-3))
    state.SkipWithError("another mean");
  state.counters["target"] =
      benchmark::Counter(double(side) * side, benchmark::Counter::kIsIterationInvariantRate |
                                                  benchmark::Counter::kInvert);
  state.counters["new peak MB"] = peakMegabytes() - before;
}
BENCHMARK(BM_HugeGrid)
    ->ArgNames({"side", "threads"})
    ->Args({1000, 2})
    ->Args({10000, 2})
    ->Iterations(1)
    ->UseRealTime()
    ->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
