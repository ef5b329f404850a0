// Covariance matrices of sample sets, beside loops written by hand for one spherical structure.
// Counters: pairs (or samples) per second.

#include "BenchPoints.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmVModel.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

constexpr double NUGGET = 0.05;
constexpr double SILL = 0.59;
constexpr double RANGE = 897.;

struct Samples
{
  explicit Samples(int n) : x(n), y(n), z(n, 0.)
  {
    for (int i = 0; i < n; ++i) {
      x[i] = 3000. * bench::uniform(20240601, 2 * i);
      y[i] = 4000. * bench::uniform(20240601, 2 * i + 1);
    }
  }

  std::vector<double> x, y, z;
};

NgmVModel makeModel(const char *label)
{
  NgmVModel model(1);
  model.setNugget(0, 0, NUGGET);
  model.addStructure(QString::fromLatin1(label), SILL);
  model.setRangeIsotropic(0, RANGE);
  return model;
}

double spherical(double dx, double dy, double dz)
{
  const double u = std::sqrt(dx * dx + dy * dy + dz * dz) / RANGE;
  return u < 1. ? SILL * (1. - 0.5 * u * (3. - u * u)) : 0.;
}

/// Distances, covariance and writes in one loop, then the lower triangle as a copy.
void fusedAllCovas(const Samples &s, NgmMatrix &matrix)
{
  const int n = int(s.x.size());
  double *elements = matrix.elements();
  const double *x = s.x.data(), *y = s.y.data(), *z = s.z.data();
  for (int j = 0; j < n; ++j) {
    double *__restrict column = elements + std::size_t(j) * n;
    for (int i = 0; i <= j; ++i)
      column[i] = spherical(x[j] - x[i], y[j] - y[i], z[j] - z[i]);
    column[j] += NUGGET;
    for (int i = 0; i < j; ++i)
      elements[j + std::size_t(i) * n] = column[i];
  }
}

void fusedPointSet(const NbgVector3D &target, const Samples &s, NgmMatrix &matrix)
{
  const int n = int(s.x.size());
  double *__restrict column = matrix.elements();
  const double *x = s.x.data(), *y = s.y.data(), *z = s.z.data();
  for (int i = 0; i < n; ++i) {
    const double dx = target.x() - x[i], dy = target.y() - y[i], dz = target.z() - z[i];
    column[i] = spherical(dx, dy, dz) + (dx * dx + dy * dy + dz * dz < 1e-30 ? NUGGET : 0.);
  }
}

void countPairs(benchmark::State &state, int n)
{
  state.SetItemsProcessed(state.iterations() * std::int64_t(n) * (n + 1) / 2);
}

void allCovas(benchmark::State &state, const NgmVModel &model, NgmVModel::MatrixPart part)
{
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, n, true);
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  for (auto _ : state) {
    model.calcAllCovas(n, s.x.data(), s.y.data(), s.z.data(), matrix, cache.get(), part);
    benchmark::ClobberMemory();
  }
  countPairs(state, n);
}

void BM_allCovasByHand(benchmark::State &state)
{
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, n, true);
  for (auto _ : state) {
    fusedAllCovas(s, matrix);
    benchmark::ClobberMemory();
  }
  NgmMatrix check(n, n, true);
  makeModel("Spherical").calcAllCovas(n, s.x.data(), s.y.data(), s.z.data(), check);
  if (check != matrix)
    state.SkipWithError("the loop by hand gives other covariances");
  countPairs(state, n);
}

void BM_allCovas(benchmark::State &state)
{
  allCovas(state, makeModel("Spherical"), NgmVModel::MatrixPart::Full);
}

void BM_allCovasUpper(benchmark::State &state)
{
  allCovas(state, makeModel("Spherical"), NgmVModel::MatrixPart::Upper);
}

void BM_allCovasExponential(benchmark::State &state)
{
  allCovas(state, makeModel("Exponential"), NgmVModel::MatrixPart::Full);
}

void BM_allCovasRotated(benchmark::State &state)
{
  NgmVModel model = makeModel("Spherical");
  model.setRanges(0, NbgVector3D(1200., 480., 480.));
  model.setGlobalRotation(NbgRotation(60., 0., 0.));
  allCovas(state, model, NgmVModel::MatrixPart::Full);
}

void BM_pointSetByHand(benchmark::State &state)
{
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, 1, false);
  for (auto _ : state) {
    fusedPointSet(NbgVector3D(1500., 2000.), s, matrix);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void BM_pointSet(benchmark::State &state)
{
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, 1, false);
  const NgmVModel model = makeModel("Spherical");
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  for (auto _ : state) {
    model.calcCovasPointSet(NbgVector3D(1500., 2000.), n, s.x.data(), s.y.data(), s.z.data(),
                            matrix, cache.get());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(BM_allCovasByHand)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovas)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovasUpper)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovasExponential)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovasRotated)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_pointSetByHand)->Arg(16)->Arg(1000);
BENCHMARK(BM_pointSet)->Arg(16)->Arg(1000);

BENCHMARK_MAIN();
