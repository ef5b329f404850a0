// Experimental variogram of a grid of 512 x 512 nodes in two directions of 256 lags, by both
// routes: time of a whole run, loading included. The FFT route is checked against the direct one.

#include "BenchPoints.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/stats/NgcVariogramOnGrid.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int N = 512;
constexpr int N_LAGS = 256;

NgdDataSetGrid makeDataSet()
{
  NbgGeomGrid geometry;
  geometry.setNodesNumber2D(N, N);
  geometry.setOriginCentered(NbgVector3D());
  const auto provider = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
  std::vector<double> values(std::size_t(N) * N);
  for (std::size_t i = 0; i < values.size(); ++i)
    values[i] = bench::uniform(5, i) < 0.05 ? NbbGlobal::D_FFFF : 10. + bench::normal(6, i);
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::V, provider->addVariable(QStringLiteral("V"), values));
  return dataSet;
}

bool run(NgcVariogramOnGrid &calculator, const NgdDataSetGrid &dataSet, bool useFft)
{
  calculator.setInputDataSet(dataSet);
  calculator.addDirection(NbgVector3D::X, 1., N_LAGS, QStringList());
  calculator.addDirection(NbgVector3D::Y, 1., N_LAGS, QStringList());
  calculator.setUseFFT(useFft);
  calculator.setNThread(1);
  return calculator.execute() == NbcAProgress::COMPLETED;
}

QVector<double> valuesOf(const NgcVariogramOnGrid &calculator, int dir)
{
  return calculator.getResults(0).getVarioColumn(dir, NgmEVarioExp::EValue::VARIOGRAM, 0, 0);
}

/// Argument: FFT route.
void variogramOnGrid(benchmark::State &state)
{
  static const NgdDataSetGrid dataSet = makeDataSet();
  static NgcVariogramOnGrid direct;
  static const bool isDirectDone = run(direct, dataSet, false);
  for (auto iteration : state) {
    Q_UNUSED(iteration)
    NgcVariogramOnGrid calculator;
    bool isRight = run(calculator, dataSet, state.range(0) != 0) && isDirectDone;
    for (int dir = 0; isRight && dir < 2; ++dir) {
      const QVector<double> values = valuesOf(calculator, dir), expected = valuesOf(direct, dir);
      for (int lag = 0; lag < N_LAGS; ++lag)
        isRight = isRight && std::fabs(values[lag] - expected[lag]) <= 1e-9 * expected[lag];
    }
    if (!isRight) {
      state.SkipWithError("wrong result");
      return;
    }
  }
}

}  // namespace

BENCHMARK(variogramOnGrid)
    ->ArgName("fft")
    ->Arg(1)
    ->Arg(0)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
