// Variogram of 1,000,000 samples along 2,000 lines, 20 lags: time of a whole run, loading included.
// Arguments: threads; whether positions ascend along the lines (if not, every pair of a line has to
// be looked at). Numbers of pairs are checked against those of regular lines.

#include "BenchPoints.h"
#include "basic/provider/NbpMemoryProviderLineW.h"
#include "geos/data/NgdDataSetLines.h"
#include "geos/stats/NgcVariogram1D.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int N_LINES = 2000;
constexpr int N_SAMPLES = 500;  // per line
constexpr int N_LAGS = 20;

NgdDataSetLines makeDataSet(bool ascending)
{
  const auto provider = QSharedPointer<NbpMemoryProviderLineW>::create(
      NbgEDimension::DIM_3D, std::vector<int>(N_LINES, N_SAMPLES));
  std::vector<double> positions, values;
  for (int line = 0; line < N_LINES; ++line) {
    for (int s = 0; s < N_SAMPLES; ++s) {
      // A second start in the middle of the line, out of the reach of the first.
      const bool isSecondHalf = !ascending && s >= N_SAMPLES / 2;
      positions.push_back(isSecondHalf ? s - 1e6 : s);
      values.push_back(10. + bench::normal(6, values.size()));
    }
  }
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::LINE_S, provider->addVariable(QStringLiteral("S"), positions));
  dataSet.assignVariable(Nbd::Role::V, provider->addVariable(QStringLiteral("V"), values));
  return dataSet;
}

bool isRight(const NgcVariogram1D &calculator, bool ascending)
{
  const QVector<qint64> nPairs = calculator.getResults().getNumberOfPairs(0, false, 0, 0);
  const int nRuns = ascending ? 1 : 2;
  for (int lag = 1; lag < N_LAGS; ++lag) {
    if (nPairs[lag] != qint64(N_LINES) * (N_SAMPLES - nRuns * lag))
      return false;
  }
  return nPairs[0] == 0;
}

void variogram1D(benchmark::State &state)
{
  const bool ascending = state.range(1) != 0;
  const NgdDataSetLines dataSet = makeDataSet(ascending);
  for (auto iteration : state) {
    Q_UNUSED(iteration)
    NgcVariogram1D calculator;
    calculator.setInputDataSet(dataSet);
    calculator.setNLags(N_LAGS);
    calculator.setNThread(int(state.range(0)));
    if (calculator.execute() != NbcAProgress::COMPLETED || !isRight(calculator, ascending)) {
      state.SkipWithError("wrong result");
      return;
    }
  }
}

}  // namespace

BENCHMARK(variogram1D)
    ->ArgNames({"threads", "ascending"})
    ->Args({1, 1})
    ->Args({2, 1})
    ->Args({1, 0})
    ->Args({2, 0})
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
