// Variogram maps of 12 rings and 18 sectors of 10,000 samples in a plane, pairs up to 300 of 1,000:
// pairs per second of a whole run, and of a plain loop that takes the sector from atan2. The
// numbers of pairs of both are compared.

#include "BenchPoints.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcVarioMap.h"

#include <benchmark/benchmark.h>

#include <numeric>

namespace {

constexpr int N_SAMPLES = 10000;
constexpr int N_RINGS = 12;
constexpr int N_SECTORS = 18;
constexpr double REACH = 300.;

struct Cells
{
  std::vector<std::int64_t> counts = std::vector<std::int64_t>(N_RINGS * N_SECTORS, 0);
  std::vector<double> sums = std::vector<double>(N_RINGS * N_SECTORS, 0.);

  std::int64_t getNPairs() const
  {
    return std::accumulate(counts.begin(), counts.end(), std::int64_t(0));
  }
};

Cells plainLoop(const bench::Points &points)
{
  constexpr double step = REACH / (N_RINGS - 0.5);
  Cells cells;
  for (int a = 0; a < N_SAMPLES; ++a) {
    for (int b = a + 1; b < N_SAMPLES; ++b) {
      const double dx = points.x[b] - points.x[a];
      const double dy = points.y[b] - points.y[a];
      const double distance = std::sqrt(dx * dx + dy * dy);
      if (!(distance < REACH))
        continue;
      const double turns = std::atan2(dy, dx) / M_PI;
      const int sector = (int(std::floor(N_SECTORS * turns + 0.5)) + 2 * N_SECTORS) % N_SECTORS;
      const int cell = N_RINGS * sector + int(distance / step + 0.5);
      const double difference = points.z[b] - points.z[a];
      ++cells.counts[cell];
      cells.sums[cell] += difference * difference;
    }
  }
  return cells;
}

struct Data
{
  bench::Points points{N_SAMPLES};
  QSharedPointer<NbpMemoryProviderPointsW> provider;
  NgdDataSetPoints dataSet;
  Cells expected = plainLoop(points);

  Data()
      : provider(QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, N_SAMPLES))
  {
    provider->addXVariable(points.x);
    provider->addYVariable(points.y);
    const QString id = provider->addVariable(QStringLiteral("z"), points.z);
    dataSet.setDataProvider(provider);
    dataSet.assignVariable(Nbd::Role::V, id);
  }

  static const Data &instance()
  {
    static const Data data;
    return data;
  }
};

void plain(benchmark::State &state)
{
  const Data &data = Data::instance();
  for (auto _ : state)
    benchmark::DoNotOptimize(plainLoop(data.points).sums[0]);
  state.counters["pairs/s"] = benchmark::Counter(double(data.expected.getNPairs()),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

void varioMap(benchmark::State &state)
{
  const Data &data = Data::instance();
  for (auto _ : state) {
    NgcVarioMap calculator(N_RINGS, N_SECTORS, 1, NbgVector3D(REACH, REACH, REACH), NbgRotation(),
                           1, Nbd::Role::V);
    calculator.setInputDataSet(data.dataSet);
    calculator.setNThread(int(state.range(0)));
    calculator.execute();
    const NbdVariableInt64 &counts = calculator.getGvm().getNPairs(0, 0);
    const std::int64_t n = std::accumulate(
        counts.getArrayConst(), counts.getArrayConst() + counts.getNValues(), std::int64_t(0));
    if (!calculator.isCompleted() || n != data.expected.getNPairs())
      state.SkipWithError("other pairs than the plain loop");
  }
  state.counters["pairs/s"] = benchmark::Counter(double(data.expected.getNPairs()),
                                                 benchmark::Counter::kIsIterationInvariantRate);
}

}  // namespace

BENCHMARK(plain)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(varioMap)->ArgName("threads")->Arg(1)->Arg(2)->UseRealTime()->Unit(
    benchmark::kMillisecond);

BENCHMARK_MAIN();
