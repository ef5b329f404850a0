// Copying a matrix, and solving kriging-like systems of the orders of a moving neighborhood beside
// the bare LAPACK call on the same inputs. A wrong solution is an error.

#include "geos/matrix/NgmLinearSystem.h"
#include "geos/matrix/NgmNumericLibrary.h"
#include "matrix/private/NgmSymmetricSolver.h"

#include <benchmark/benchmark.h>
#include <mkl.h>

#include <cmath>
#include <cstring>

namespace {

/// An ordinary kriging system: exponential covariances and one condition.
NgmMatrix krigingMatrix(int n)
{
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n - 1; ++i) {
    matrix.setElement(i, n - 1, 1.);
    for (int j = 0; j <= i; ++j)
      matrix.setElement(i, j, std::exp(-(i - j) / 5.));
  }
  return matrix;
}

NgmMatrix knownSolution(int n)
{
  NgmMatrix solution(n, 1, false);
  for (int i = 0; i < n; ++i)
    solution.setElement(i, 0, std::sin(i + 1.));
  return solution;
}

void check(benchmark::State &state, const double *x, const NgmMatrix &solution)
{
  for (int i = 0; i < solution.getNRows(); ++i)
    if (!(std::abs(x[i] - solution(i, 0)) < 1e-11))
      state.SkipWithError("wrong solution");
}

void copyMatrix(benchmark::State &state)
{
  const int n = int(state.range(0));
  const NgmMatrix matrix(n, n, false);
  for (auto _ : state) {
    NgmMatrix copy(matrix);
    benchmark::DoNotOptimize(copy.constElements());
  }
}
BENCHMARK(copyMatrix)->Arg(10)->Arg(100)->Arg(2000);

void bareDsysv(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  int n = int(state.range(0));
  const NgmMatrix lhs = krigingMatrix(n);
  const NgmMatrix solution = knownSolution(n);
  const NgmMatrix rhs = lhs * solution;
  const std::size_t bytes = std::size_t(n) * sizeof(double);
  std::vector<double> a(std::size_t(n) * n), x(n), work(64 * n);
  std::vector<int> pivots(n);
  int one = 1;
  int workSize = 64 * n;
  int info = 0;
  for (auto _ : state) {
    std::memcpy(a.data(), lhs.constElements(), bytes * n);
    std::memcpy(x.data(), rhs.constElements(), bytes);
    dsysv("U", &n, &one, a.data(), &n, pivots.data(), x.data(), &n, work.data(), &workSize, &info);
  }
  check(state, x.data(), solution);
}
BENCHMARK(bareDsysv)->Arg(17)->Arg(31)->Arg(34)->Arg(64)->Arg(128);

void symmetricSolver(benchmark::State &state)
{
  const int n = int(state.range(0));
  const int rows = NgmSymmetricSolver::paddedRows(n);
  const NgmMatrix lhs = krigingMatrix(n);
  const NgmMatrix solution = knownSolution(n);
  const NgmMatrix rhs = lhs * solution;
  NgmMatrix a(rows, n, false), x(rows, 1, false);
  std::vector<int> pivots(n);
  for (auto _ : state) {
    NgmSymmetricSolver::copyUpper(n, lhs.constElements(), n, a.elements(), rows);
    NgmSymmetricSolver::copyColumns(n, 1, rhs.constElements(), n, x.elements(), rows);
    NgmSymmetricSolver::solve(n, a.elements(), pivots.data(), 1, x.elements());
  }
  check(state, x.constElements(), solution);
}
BENCHMARK(symmetricSolver)->Arg(17)->Arg(31)->Arg(34)->Arg(64)->Arg(128);

void resolveEquat(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const int n = int(state.range(0));
  const NgmMatrix lhs = krigingMatrix(n);
  const NgmMatrix solution = knownSolution(n);
  const NgmMatrix rhs = lhs * solution;
  NgmMatrix a(true), x(false);
  std::vector<int> pivots(n);
  for (auto _ : state) {
    a.copyDeep(lhs);
    x.copyDeep(rhs);
    a.resolveEquat(x, pivots.data(), 1);
  }
  check(state, x.constElements(), solution);
}
BENCHMARK(resolveEquat)->Arg(17)->Arg(31)->Arg(34)->Arg(64)->Arg(128);

void linearSystem(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const int n = int(state.range(0));
  const NgmMatrix solution = knownSolution(n);
  NgmLinearSystem system(n, 1, true);
  system.getLHS() = krigingMatrix(n);
  system.getRHS() = system.getLHS() * solution;
  for (auto _ : state)
    system.solve();
  check(state, system.getResults().constElements(), solution);
}
BENCHMARK(linearSystem)->Arg(17)->Arg(31)->Arg(34)->Arg(64)->Arg(128);

void invertSymmetrical(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const int n = int(state.range(0));
  const NgmMatrix matrix = krigingMatrix(n);
  NgmMatrix inverse(true);
  for (auto _ : state)
    matrix.invert(inverse, 1);
  NgmMatrix identity(n, n, false);
  identity.setIdentity();
  if (!(matrix * inverse - identity).isNull(1e-9))
    state.SkipWithError("wrong inverse");
}
BENCHMARK(invertSymmetrical)->Arg(156)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
