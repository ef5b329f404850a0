// Time of whole automatic fits. Goals on a machine of two cores: one variable, three structures,
// two directions of 15 lags under 30 ms; four variables, three structures, three directions under 1
// s.

#include <benchmark/benchmark.h>

#include "basic/base/NbbAMessage.h"
#include "geos/fit/NgmVModelAutoFitting.h"
#include "support/FitCases.h"

namespace {

using namespace fitcases;

NgmVModel truthOf(int nVariables)
{
  NgmVModel truth = emptyModel(nVariables);
  const double ranges[] = {25., 60., 140.};
  for (int k = 0; k < 3; ++k) {
    truth.addStructure(k == 1 ? QStringLiteral("Exponential") : QStringLiteral("Spherical"),
                       randomSills(nVariables, std::uint64_t(40 + k)));
    truth.setRanges(k, NbgVector3D(ranges[k], 0.6 * ranges[k], 1.));
  }
  truth.setNuggetMatrix(randomSills(nVariables, 50));
  return truth;
}

void run(benchmark::State &state, const NgmVModel &truth, const NgmVModelToBeOptimized &request,
         int nDirections)
{
  NgmVModelAutoFitting fitting;
  fitting.setVariogramExp(dataOf(truth, inPlane(nDirections), 0.05, 60), NgmEVarioExp::VARIOGRAM);
  fitting.setInitialModel(request);
  fitting.setVarianceCovarianceMatrix(truth.getC00Matrix());
  for (auto _ : state)
    fitting.fit(true);
  if (!fitting.isCompleted())
    state.SkipWithError(qPrintable(fitting.getErrorMessage()));
  else
    state.counters["score"] = 0.5 * fitting.getGOF();
}

void fit(benchmark::State &state)
{
  NgcACalculator::initMKLThreading();
  NbbAMessage::setSink([](const NbbAMessage::Record &) {});
  const NgmVModel truth = truthOf(int(state.range(0)));
  run(state, truth, plainRequest(truth), int(state.range(1)));
}

/// Sills of three structures and a nugget in three directions; with totals, or without (0).
void fitSills(benchmark::State &state)
{
  NgcACalculator::initMKLThreading();
  NbbAMessage::setSink([](const NbbAMessage::Record &) {});
  const int nVariables = int(state.range(0));
  NgmVModel truth = truthOf(nVariables);
  NgmVModelToBeOptimized request(truth);
  request.setFitSillsOnly(true);
  for (int i = 0; state.range(1) > 0 && i < nVariables; ++i)
    request.setSillCumulativeConstraint(i, truth.getC0IJ(i, i));
  run(state, truth, request, 3);
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

BENCHMARK(fitSills)
    ->ArgNames({"variables", "totals"})
    ->Args({1, 0})
    ->Args({4, 0})
    ->Args({1, 1})
    ->Args({4, 1})
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
