// Time of whole automatic fits. Goals on a machine of two cores: one variable, three structures,
// two directions of 15 lags under 30 ms; four variables, three structures, three directions under 1
// s.

#include <benchmark/benchmark.h>

#include "basic/base/NbbAMessage.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "support/FitCases.h"

namespace {

using namespace fitcases;

void fit(benchmark::State &state)
{
  NgcACalculator::initMKLThreading();
  NbbAMessage::setSink([](const NbbAMessage::Record &) {});
  const int nVariables = int(state.range(0));
  const Layout layout = inPlane(int(state.range(1)));
  NgmVModel truth = emptyModel(nVariables);
  const double ranges[] = {25., 60., 140.};
  for (int k = 0; k < 3; ++k) {
    truth.addStructure(k == 1 ? QStringLiteral("Exponential") : QStringLiteral("Spherical"),
                       randomSills(nVariables, std::uint64_t(40 + k)));
    truth.setRanges(k, NbgVector3D(ranges[k], 0.6 * ranges[k], 1.));
  }
  truth.setNuggetMatrix(randomSills(nVariables, 50));
  const NgmVariogramExpData data = dataOf(truth, layout, 0.05, 60);
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(data, NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(plainRequest(truth));
  fitting.setVarianceCovarianceMatrix(truth.getC00Matrix());
  for (auto _ : state)
    fitting.fit(true);
  if (!fitting.isCompleted())
    state.SkipWithError(qPrintable(fitting.getErrorMessage()));
  else
    state.counters["score"] = 0.5 * fitting.getGOF();
}

}  // namespace

BENCHMARK(fit)
    ->ArgNames({"variables", "directions"})
    ->Args({1, 2})
    ->Args({1, 4})
    ->Args({2, 3})
    ->Args({4, 3})
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
