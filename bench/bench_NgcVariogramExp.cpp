// Experimental variograms of the benchmark points: time of a whole run, loading included, and peak
// memory. BareKernel is the same variogram by
// one sorted axis in single precision, without a framework; its number of pairs is near theirs.

#include "BenchPoints.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcVarioMap.h"
#include "geos/stats/NgcVariogram.h"
#include "geos/stats/NgcVariogramExp.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <map>
#include <numeric>

namespace {

constexpr double UNUSED = NbbGlobal::D_FFFF;

const bench::Points &points(int n)
{
  static std::map<int, bench::Points> sets;
  return sets.try_emplace(n, n).first->second;
}

NgdDataSetPoints makeDataSet(int n, int nVariables)
{
  const bench::Points &set = points(n);
  auto provider = QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, n);
  provider->addXVariable(set.x);
  provider->addYVariable(set.y);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  for (int v = 0; v < nVariables; ++v) {
    std::vector<double> values = set.z;
    for (int i = 0; i < n && v > 0; ++i)
      values[i] += 0.3 * bench::normal(900 + v, i);
    dataSet.assignVariable(Nbd::Role::V,
                           provider->addVariable(QStringLiteral("Z%1").arg(v), std::move(values)));
  }
  return dataSet;
}

double peakMegabytes()
{
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return double(usage.ru_maxrss) / 1024.;
}

void run(benchmark::State &state, const NgdDataSetPoints &dataSet, const NgmVariogramExp &request)
{
  NgcVariogramExp calculator;
  calculator.setDataSet(dataSet);
  calculator.setVarioExp(request);
  QStringList names;
  for (int v = 0; v < request.getNVariables(); ++v)
    names << QString::number(v);
  calculator.setStatistics(NgmMultivariateStatistics(names));
  calculator.setNThread(int(state.range(0)));
  const double before = peakMegabytes();
  for (auto _ : state) {
    if (calculator.execute() != NbcAProgress::COMPLETED)
      state.SkipWithError(qPrintable(calculator.getErrorMessage()));
  }
  qint64 nPairs = 0;
  for (const qint64 n : calculator.getResults().getNumberOfPairs(0, false, 0, 0))
    nPairs += n;
  state.counters["pairs"] = double(nPairs);
  state.counters["MB"] = peakMegabytes() - before;
}

/// Lags up to 10 times the lag, centred.
NgmVariogramExp omni(double lag, int nVariables)
{
  NgmVariogramExp request(false);
  request.setNVariables(nVariables);
  request.addOmnidirectional(11, lag, 0.5, 0, 0.);
  request.addVarioCalculation(NgmEVarioExp::EValue::VARIOGRAM);
  return request;
}

void Omnidirectional(benchmark::State &state)
{
  run(state, makeDataSet(50000, 1), omni(10., 1));
}

void FourDirections(benchmark::State &state)
{
  NgmVariogramExp request(false);
  request.addRegular2D(4, 0., 22.5, UNUSED, 11, 10., 0.5, 0, 0.);
  request.addVarioCalculation(NgmEVarioExp::EValue::VARIOGRAM);
  run(state, makeDataSet(50000, 1), request);
}

void ThreeVariables(benchmark::State &state)
{
  run(state, makeDataSet(50000, 3), omni(10., 3));
}

void MillionSamples(benchmark::State &state)
{
  run(state, makeDataSet(1000000, 1), omni(1., 1));
}

/// By pairs of buffers: all candidates within the distance along one axis.
void PairsOfBuffers(benchmark::State &state)
{
  NgcVariogram calculator(Nbd::Role::V);
  calculator.setInputDataSet(makeDataSet(50000, 1));
  calculator.setVarioExp(omni(10., 1));
  calculator.setStatistics(NgmMultivariateStatistics(QStringList(QStringLiteral("0"))));
  calculator.setNThread(int(state.range(0)));
  for (auto _ : state) {
    if (calculator.execute() != NbcAProgress::COMPLETED)
      state.SkipWithError(qPrintable(calculator.getErrorMessage()));
  }
}

void Map(benchmark::State &state)
{
  NgcVarioMap calculator(10, 36, 1, NbgVector3D(100., 100., 1.), NbgRotation(), 1, Nbd::Role::V);
  calculator.setInputDataSet(makeDataSet(10000, 1));
  calculator.setNThread(int(state.range(0)));
  for (auto _ : state) {
    if (calculator.execute() != NbcAProgress::COMPLETED)
      state.SkipWithError(qPrintable(calculator.getErrorMessage()));
  }
}

// The same variogram by bare arithmetic on sorted floats.
void BareKernel(benchmark::State &state)
{
  constexpr int n = 50000;
  constexpr float reach = 105.f;
  const bench::Points &set = points(n);
  std::vector<int> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) { return set.x[a] < set.x[b]; });
  std::vector<float> x(n), y(n), z(n), distance(n), square(n);
  for (int i = 0; i < n; ++i) {
    x[i] = float(set.x[order[i]]);
    y[i] = float(set.y[order[i]]);
    z[i] = float(set.z[order[i]]);
  }
  long pairs = 0;
  for (auto _ : state) {
    double gamma[12] = {}, distances[12] = {};
    long counts[12] = {};
    for (int i = 0; i < n; ++i) {
      int last = i + 1;
      while (last < n && x[last] - x[i] <= reach)
        ++last;
      const int m = last - i - 1;
      for (int j = 0; j < m; ++j) {
        const float dx = x[i + 1 + j] - x[i], dy = y[i + 1 + j] - y[i], dz = z[i + 1 + j] - z[i];
        distance[j] = std::sqrt(dx * dx + dy * dy);
        square[j] = dz * dz;
      }
      for (int j = 0; j < m; ++j) {
        if (!(distance[j] < reach))
          continue;
        const int k = int(distance[j] * 0.1f + 0.5f);
        ++counts[k];
        distances[k] += distance[j];
        gamma[k] += square[j];
      }
    }
    benchmark::DoNotOptimize(gamma);
    benchmark::DoNotOptimize(distances);
    pairs = std::accumulate(counts, counts + 12, 0L);
  }
  state.counters["pairs"] = double(pairs);
}

}  // namespace

BENCHMARK(BareKernel)->Unit(benchmark::kMillisecond);
BENCHMARK(Omnidirectional)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(FourDirections)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(ThreeVariables)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(PairsOfBuffers)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Map)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(MillionSamples)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

BENCHMARK_MAIN();
