// The road of a kriging run, loading and search included, beside the bare arithmetic
// (BareKriging.h). Both sum their estimates; sums that differ are an error. So is one that differs
// from that of independent programs, where these have been run.

#include "BareKriging.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcKriging.h"
#include "geos/interpol/NgmBlock.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <tuple>

namespace {

using bench::Problem;
using bench::Samples;

/// Sums of the estimates, computed with two independent programs that agree on all digits; NaN
/// where there is none.
double publishedSum(const Problem &problem)
{
  const auto is = [&problem](int nSamples, int side, int nNeighbors) {
    return problem.nSamples == nSamples && problem.side == side &&
           problem.nNeighbors == nNeighbors && problem.nVariables == 1 && problem.blockSide == 1;
  };
  if (is(10000, 250, 16))
    return -612.1098681;
  if (is(10000, 250, 32))
    return -623.9902893;
  return is(1000, 100, 0) ? -7.571828825 : NAN;
}

bool agrees(double sum, double expected)
{
  return std::isnan(expected) || std::abs(sum - expected) < 1e-7 * std::abs(expected);
}

/// Data sets of a problem in memory, and the calculator that kriges them.
class Run
{
public:
  Run(const Samples &samples, const Problem &problem) : _problem(problem)
  {
    _setInput(samples);
    _setOutput();
    _setModel();
    _setNeighborhood();
    if (problem.blockSide > 1) {
      NgmBlock block(false);
      block.setSize(NbgVector3D(problem.cell(), problem.cell(), 0.));
      block.setDiscretizationPointsNumber(NbgIntVector3D(problem.blockSide, problem.blockSide, 1));
      _kriging.setSupportBlock(block);
    }
  }

  /// Empty when it went well.
  QString krige(int nThreads)
  {
    _kriging.setNThread(nThreads);
    return _kriging.execute() == NbcAProgress::COMPLETED ? QString() : _kriging.getErrorMessage();
  }

  double sumEstimates() const
  {
    double sum = 0.;
    NbdVariableDouble values;
    values.resizeAndFill(_problem.nTargets());
    const NbiIntervalIntSmall all = NbiIntervalIntSmall::fromLength(_problem.side);
    const auto levels = NbiIntervalIntSmall::fromLength(std::max(1, _problem.levels));
    for (const QString &estimate : _estimates) {
      _grid->readGrid(estimate, all, all, levels, values);
      for (int i = 0; i < values.getNValues(); ++i)
        sum += values.getArrayConst()[i];
    }
    return sum;
  }

private:
  void _setInput(const Samples &samples)
  {
    _samples = QSharedPointer<NbpMemoryProviderPointsW>::create(
        _problem.is3D() ? NbgEDimension::DIM_3D : NbgEDimension::DIM_2D, qint64(samples.x.size()));
    _samples->addXVariable(samples.x);
    _samples->addYVariable(samples.y);
    if (_problem.is3D())
      _samples->addZVariable(samples.z);
    NgdDataSetPoints input;
    input.setDataProvider(_samples);
    for (int v = 0; v < _problem.nVariables; ++v)
      input.assignVariable(Nbd::Role::V,
                           _samples->addVariable(QStringLiteral("z%1").arg(v), samples.values[v]));
    _kriging.setInputDataSet(input);
  }

  void _setOutput()
  {
    const double cell = _problem.cell();
    NbgGeomGrid geometry;
    if (_problem.is3D()) {
      const double height = 1000. / _problem.levels;
      geometry.setNodesNumber(_problem.side, _problem.side, _problem.levels);
      geometry.setCellSize(NbgVector3D(cell, cell, height));
      geometry.setOriginCentered(NbgVector3D(0.5 * cell, 0.5 * cell, 0.5 * height));
    } else {
      geometry.setNodesNumber2D(_problem.side, _problem.side);
      geometry.setCellSize(NbgVector3D(cell, cell, 1.));
      geometry.setOriginCentered(NbgVector3D(0.5 * cell, 0.5 * cell, 0.));
    }
    _grid = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
    NgdDataSetGrid output;
    output.setDataProvider(_grid);
    for (int v = 0; v < _problem.nVariables; ++v) {
      _estimates << _grid->addEmptyVariableSimple(QStringLiteral("estimate%1").arg(v),
                                                  Nbd::TYPE_DOUBLE);
      output.assignVariable(Nbd::Role::V, _estimates.last());
      output.assignVariable(
          Nbd::Role::STDEV,
          _grid->addEmptyVariableSimple(QStringLiteral("stdev%1").arg(v), Nbd::TYPE_DOUBLE));
    }
    _kriging.setOutputDataSet(output);
  }

  void _setModel()
  {
    const int n = _problem.nVariables;
    NgmMatrix nugget(n, n, true), sill(n, n, true);
    for (int i = 0; i < n; ++i) {
      for (int j = i; j < n; ++j) {
        nugget.setElement(i, j, bench::nuggets[i][j]);
        sill.setElement(i, j, bench::sills[i][j]);
      }
    }
    NgmVModel model(n);
    model.setNuggetMatrix(nugget);
    model.setRangeIsotropic(model.addStructure(QStringLiteral("Spherical"), sill), bench::range);
    _kriging.setVarioModel(model);
  }

  void _setNeighborhood()
  {
    if (_problem.nNeighbors == 0) {
      _kriging.setUsingUniqueNeighborhood();
      return;
    }
    NgmNeighborhoodMoving neighborhood;
    neighborhood.setEllipseSize(NbgVector3D(2000., 2000., 2000.));
    neighborhood.setSectors(1, _problem.nNeighbors, false);
    _kriging.setUsingMovingNeighborhood(neighborhood);
  }

  Problem _problem;
  QSharedPointer<NbpMemoryProviderPointsW> _samples;
  QSharedPointer<NbpMemoryProviderGridW> _grid;
  QStringList _estimates;
  NgcKriging _kriging = NgcKriging(QStringLiteral("KRIGING"));
};

/// samples, side, levels, neighbors (0: all), points along a block's side, variables
Problem problemOf(const benchmark::State &state)
{
  return {int(state.range(0)), int(state.range(1)), int(state.range(2)),
          int(state.range(3)), int(state.range(4)), int(state.range(5))};
}

/// The sum that the bare arithmetic gives, computed once per problem.
double bareSum(const Samples &samples, const Problem &problem)
{
  static std::map<std::tuple<int, int, int, int, int, int>, double> sums;
  const auto key = std::make_tuple(problem.nSamples, problem.side, problem.levels,
                                   problem.nNeighbors, problem.blockSide, problem.nVariables);
  if (sums.find(key) == sums.end())
    sums[key] = bench::runBare(samples, problem);
  return sums[key];
}

void reportTargets(benchmark::State &state, const Problem &problem)
{
  state.counters["target"] =
      benchmark::Counter(problem.nTargets(), benchmark::Counter::kIsIterationInvariantRate |
                                                 benchmark::Counter::kInvert);
}

void bare(benchmark::State &state)
{
  mkl_set_num_threads(1);
  const Problem problem = problemOf(state);
  const Samples samples(problem.nSamples, problem.is3D());
  for (auto _ : state) {
    if (!agrees(bench::runBare(samples, problem), publishedSum(problem)))
      state.SkipWithError("wrong sum of estimates");
  }
  reportTargets(state, problem);
}

/// With threads as the last argument.
void kriging(benchmark::State &state)
{
  const Problem problem = problemOf(state);
  const Samples samples(problem.nSamples, problem.is3D());
  for (auto _ : state) {
    Run run(samples, problem);
    const QString failure = run.krige(int(state.range(6)));
    state.PauseTiming();
    if (!failure.isEmpty())
      state.SkipWithError(qPrintable(failure));
    else if (!agrees(run.sumEstimates(), publishedSum(problem)) ||
             !agrees(run.sumEstimates(), bareSum(samples, problem)))
      state.SkipWithError("wrong sum of estimates");
    state.ResumeTiming();
  }
  reportTargets(state, problem);
}

/// The same without loading and tree: the time of a run less that of a run of one target.
void krigingLoaded(benchmark::State &state)
{
  using Clock = std::chrono::steady_clock;
  const auto seconds = [](Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
  };
  const Problem problem = problemOf(state);
  Problem single = problem;
  single.side = single.levels = 1;
  const Samples samples(problem.nSamples, problem.is3D());
  for (auto _ : state) {
    Run loading(samples, single);
    Run run(samples, problem);
    const auto start = Clock::now();
    loading.krige(1);
    const auto loaded = Clock::now();
    const QString failure = run.krige(int(state.range(6)));
    const auto end = Clock::now();
    state.SetIterationTime(seconds(end - loaded) - seconds(loaded - start));
    if (!failure.isEmpty())
      state.SkipWithError(qPrintable(failure));
    else if (!agrees(run.sumEstimates(), bareSum(samples, problem)))
      state.SkipWithError("wrong sum of estimates");
  }
  reportTargets(state, problem);
}

void addProblems(benchmark::internal::Benchmark *benchmark)
{
  benchmark->Args({10000, 250, 0, 16, 1, 1})
      ->Args({10000, 250, 0, 32, 1, 1})
      ->Args({100000, 100, 0, 16, 1, 1})
      ->Args({10000, 100, 0, 16, 4, 1})
      ->Args({1000, 100, 0, 0, 1, 1})
      ->Args({2000, 100, 0, 0, 1, 1})
      ->Args({10000, 100, 0, 16, 1, 2});
}

void addRuns(benchmark::internal::Benchmark *benchmark)
{
  for (const int nThreads : {1, 2}) {
    benchmark->Args({10000, 250, 0, 16, 1, 1, nThreads})
        ->Args({10000, 250, 0, 32, 1, 1, nThreads})
        ->Args({100000, 100, 0, 16, 1, 1, nThreads})
        ->Args({10000, 100, 0, 16, 4, 1, nThreads})
        ->Args({1000, 100, 0, 0, 1, 1, nThreads})
        ->Args({2000, 100, 0, 0, 1, 1, nThreads})
        ->Args({10000, 100, 0, 16, 1, 2, nThreads});
  }
}

// The processor time is that of all threads, so that it tells something on a busy machine too.
BENCHMARK(bare)
    ->Apply(addProblems)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(kriging)->Apply(addRuns)->MeasureProcessCPUTime()->UseRealTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(krigingLoaded)
    ->Args({500000, 100, 10, 30, 1, 1, 1})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv)
{
  NgcKriging::initMKLThreading();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
