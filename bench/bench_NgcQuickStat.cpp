// Quick statistics of 10 million samples in three double columns: values per second of a whole run,
// loading included, and the peak memory beyond the provider's. The sums are checked against a plain
// loop.

#include "BenchPoints.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/base/NgaStatSum.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcQuickStat.h"
#include "geos/stats/NgmMultivariateStatistics.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>

namespace {

constexpr int N_SAMPLES = 10000000;
constexpr int N_VARIABLES = 3;

/// Shared by all runs, with the sums of a plain loop.
struct Data
{
  QSharedPointer<NbpMemoryProviderPointsW> provider;
  QStringList ids;
  double sums[N_VARIABLES] = {};
  double squares[N_VARIABLES] = {};
  double products = 0.;  // of the first two

  Data()
      : provider(QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, N_SAMPLES))
  {
    std::vector<double> columns[N_VARIABLES];
    for (int k = 0; k < N_VARIABLES; ++k) {
      std::vector<double> &column = columns[k];
      column.resize(N_SAMPLES);
      for (int i = 0; i < N_SAMPLES; ++i) {
        column[i] = bench::uniform(100 + k, i) * 20. - 1. + 5. * bench::uniform(99, i);
        sums[k] += column[i];
        squares[k] += column[i] * column[i];
      }
    }
    for (int i = 0; i < N_SAMPLES; ++i)
      products += columns[0][i] * columns[1][i];
    for (int k = 0; k < N_VARIABLES; ++k)
      ids << provider->addVariable(QStringLiteral("A%1").arg(k), std::move(columns[k]));
  }

  static const Data &instance()
  {
    static const Data data;
    return data;
  }
};

double peakMegabytes()
{
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return double(usage.ru_maxrss) / 1024.;
}

bool close(double actual, double expected)
{
  return std::abs(actual - expected) <= 1e-9 * std::abs(expected);
}

bool isRight(const NgmMultivariateStatistics &result, const Data &data, bool bivariate)
{
  bool right = true;
  for (int k = 0; k < N_VARIABLES; ++k) {
    const NbcStatMono &record = result.getConstUnivariateStats(k);
    const double mean = data.sums[k] / N_SAMPLES;
    right = right && close(record.getMean(), mean) &&
            close(record.getVariance(), data.squares[k] / N_SAMPLES - mean * mean);
  }
  if (!bivariate)
    return right;
  const NbcStatMono &first = result.getConstUnivariateStats(0);
  const NbcStatMono &second = result.getConstUnivariateStats(1);
  const double covariance = data.products / N_SAMPLES - first.getMean() * second.getMean();
  return right && close(result.getRho(0, 1), covariance / (first.getStandardDeviation() *
                                                           second.getStandardDeviation()));
}

/// Arguments: threads, bivariate.
void quickStatistics(benchmark::State &state)
{
  const Data &data = Data::instance();
  const bool bivariate = state.range(1) != 0;
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(data.provider);
  for (const QString &id : data.ids)
    dataSet.assignVariable(Nbd::Role::V, id);
  const double before = peakMegabytes();
  for (auto iteration : state) {
    Q_UNUSED(iteration)
    NgcQuickStat calculator(Nbd::Role::V);
    calculator.setInputDataSet(dataSet);
    calculator.setNThread(int(state.range(0)));
    calculator.setBivariateStatFlag(bivariate);
    if (calculator.execute() != NbcAProgress::COMPLETED ||
        !isRight(calculator.getMultivariateStatistics(), data, bivariate)) {
      state.SkipWithError("wrong result");
      return;
    }
  }
  state.counters["values/s"] = benchmark::Counter(
      double(N_SAMPLES) * N_VARIABLES * double(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["new peak MB"] = peakMegabytes() - before;
}

/// The kernel alone on one column in memory; 0 by blocks, 1 one by one.
void sums(benchmark::State &state)
{
  constexpr int n = 1 << 20;
  std::vector<double> values(n);
  for (int i = 0; i < n; ++i)
    values[i] = bench::uniform(7, i) * 20. - 1.;
  double sum = 0.;
  for (auto iteration : state) {
    Q_UNUSED(iteration)
    NgaStatSum block;
    if (state.range(0) == 0)
      block.addValues(n, values.data());
    else
      for (double value : values)
        block.addValue(value);
    sum = block.getSumLog();
    benchmark::DoNotOptimize(sum);
  }
  state.counters["values/s"] =
      benchmark::Counter(double(n) * double(state.iterations()), benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(sums)->ArgName("single")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(quickStatistics)
    ->ArgNames({"threads", "bivariate"})
    ->Args({1, 0})
    ->Args({2, 0})
    ->Args({1, 1})
    ->Args({2, 1})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
