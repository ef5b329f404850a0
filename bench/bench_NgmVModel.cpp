// Covariances of sample sets and blocks, beside loops written by hand over the same arithmetic.
// Counters: pairs (or samples) per second.
//
// On one core of an AMD EPYC, as a ratio to the loop by hand (limit in parentheses):
//   all pairs, n = 16, 32, 500   spherical 1.32 1.26 0.91, cubic 1.24 1.17 0.91,
//                                exponential 1.23 1.15 0.97, Gaussian 1.24 1.16 0.97 (1.6),
//                                Matern of nu = 1: 1.05 1.03 1.04
//   three structures to one      2.4 2.5 2.5 (3); the upper triangle alone 0.88 0.85 0.76
//   1000 samples to a point      1.21 (1.5); to a block of 4 x 4 points 13.3 times a point (16)
//   inside a block of 8 x 8      0.84 (1.5)

#include "BenchPoints.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/matrix/NgmMatrix.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"
#include "vmodel/private/NgmVStructKernels.h"

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

  int size() const { return int(x.size()); }

  std::vector<double> x, y, z;
};

/// A structure and its closed form.
struct Spherical
{
  static constexpr const char *LABEL = "Spherical";
  static constexpr NgmVStructKernels::Spherical form() { return {}; }
};

struct Cubic
{
  static constexpr const char *LABEL = "Cubic";
  static constexpr NgmVStructKernels::Cubic form() { return {}; }
};

struct Exponential
{
  static constexpr const char *LABEL = "Exponential";
  static constexpr NgmVStructKernels::Exponential form() { return {}; }
};

struct Gaussian
{
  static constexpr const char *LABEL = "Gaussian";
  static constexpr NgmVStructKernels::Gaussian form() { return {}; }
};

struct Matern1
{
  static constexpr const char *LABEL = "Matern (nu=1.0)";
  static constexpr NgmVStructKernels::Matern form() { return {1., 2.}; }
};

NgmVModel makeModel(const char *label, int nStructures = 1)
{
  NgmVModel model(1);
  model.setNugget(0, 0, NUGGET);
  for (int k = 0; k < nStructures; ++k) {
    model.addStructure(QString::fromLatin1(label), SILL);
    model.setRangeIsotropic(k, RANGE);
  }
  return model;
}

double scaleOf(const NgmVModel &model)
{
  return model.getStructure(0).getTheoScaleFactor();
}

/// Distances, covariance and writes in one loop, then the lower triangle as a copy.
template <class Form>
void fusedAllCovas(Form form, double scale, const Samples &s, NgmMatrix &matrix)
{
  const int n = s.size();
  double *elements = matrix.elements();
  const double *__restrict x = s.x.data();
  const double *__restrict y = s.y.data();
  const double *__restrict z = s.z.data();
  for (int j = 0; j < n; ++j) {
    double *__restrict column = elements + std::size_t(j) * n;
    for (int i = 0; i <= j; ++i) {
      const double dx = x[j] - x[i], dy = y[j] - y[i], dz = z[j] - z[i];
      column[i] = SILL * form(std::sqrt(dx * dx + dy * dy + dz * dz) / scale);
    }
    column[j] += NUGGET;
    for (int i = 0; i < j; ++i)
      elements[j + std::size_t(i) * n] = column[i];
  }
}

template <class Form>
void fusedPointSet(Form form, double scale, const NbgVector3D &target, const Samples &s,
                   NgmMatrix &matrix)
{
  const int n = s.size();
  double *__restrict column = matrix.elements();
  const double *x = s.x.data(), *y = s.y.data(), *z = s.z.data();
  for (int i = 0; i < n; ++i) {
    const double dx = target.x() - x[i], dy = target.y() - y[i], dz = target.z() - z[i];
    const double d2 = dx * dx + dy * dy + dz * dz;
    column[i] = SILL * form(std::sqrt(d2) / scale) + (d2 < 1e-30 ? NUGGET : 0.);
  }
}

void countPairs(benchmark::State &state, int n)
{
  state.SetItemsProcessed(state.iterations() * std::int64_t(n) * (n + 1) / 2);
}

void allCovas(benchmark::State &state, const NgmVModel &model,
              NgmVModel::MatrixPart part = NgmVModel::MatrixPart::Full)
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

template <class Structure>
void BM_allCovasByHand(benchmark::State &state)
{
  const NgmVModel model = makeModel(Structure::LABEL);
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, n, true);
  for (auto _ : state) {
    fusedAllCovas(Structure::form(), scaleOf(model), s, matrix);
    benchmark::ClobberMemory();
  }
  NgmMatrix check(n, n, true);
  model.calcAllCovas(n, s.x.data(), s.y.data(), s.z.data(), check);
  if (check != matrix)
    state.SkipWithError("the loop by hand gives other covariances");
  countPairs(state, n);
}

template <class Structure>
void BM_allCovas(benchmark::State &state)
{
  allCovas(state, makeModel(Structure::LABEL));
}

void BM_allCovasThreeStructures(benchmark::State &state)
{
  allCovas(state, makeModel("Spherical", 3));
}

void BM_allCovasUpper(benchmark::State &state)
{
  allCovas(state, makeModel("Spherical"), NgmVModel::MatrixPart::Upper);
}

void BM_allCovasRotated(benchmark::State &state)
{
  NgmVModel model = makeModel("Spherical");
  model.setRanges(0, NbgVector3D(1200., 480., 480.));
  model.setGlobalRotation(NbgRotation(60., 0., 0.));
  allCovas(state, model);
}

void BM_pointSetByHand(benchmark::State &state)
{
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, 1, false);
  const NgmVModel model = makeModel("Spherical");
  for (auto _ : state) {
    fusedPointSet(Spherical::form(), scaleOf(model), NbgVector3D(1500., 2000.), s, matrix);
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

NgmBlock makeBlock(int n)
{
  NgmBlock block(false);
  block.setSize(NbgVector3D(400., 400., 0.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(n, n, 1));
  return block;
}

/// To be at most 16 times BM_pointSet.
void BM_blockSet4x4(benchmark::State &state)
{
  const int n = int(state.range(0));
  const Samples s(n);
  NgmMatrix matrix(n, 1, false);
  const NgmVModel model = makeModel("Spherical");
  QVector<NbgVector3D> points;
  makeBlock(4).getDiscretizationPoints(points);
  for (NbgVector3D &point : points)
    point += NbgVector3D(1500., 2000.);
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  for (auto _ : state) {
    model.calcCovasBlockSet(points.size(), points.constData(), n, s.x.data(), s.y.data(),
                            s.z.data(), matrix, cache.get());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void BM_cvv8x8ByHand(benchmark::State &state)
{
  const NgmVModel model = makeModel("Spherical");
  const NgmBlock block = makeBlock(8);
  const double scale = scaleOf(model);
  QVector<NbgVector3D> points, jittered;
  block.getDiscretizationPoints(points);
  double mean = 0.;
  for (auto _ : state) {
    block.getRandomPoints(165426, jittered, false);
    double sum = 0.;
    for (const NbgVector3D &p : points)
      for (const NbgVector3D &q : jittered) {
        const double dx = p.x() - q.x(), dy = p.y() - q.y(), dz = p.z() - q.z();
        sum += SILL * Spherical::form()(std::sqrt(dx * dx + dy * dy + dz * dz) / scale);
      }
    mean = sum / (64. * 64.);
    benchmark::DoNotOptimize(mean);
  }
  NgmMatrix check(false);
  model.calcCvv(block, 165426, check);
  if (std::abs(check(0, 0) - mean) > 1e-12)
    state.SkipWithError("the loop by hand gives another mean");
  state.SetItemsProcessed(state.iterations() * 64 * 64);
}

void BM_cvv8x8(benchmark::State &state)
{
  const NgmVModel model = makeModel("Spherical");
  const NgmBlock block = makeBlock(8);
  NgmMatrix cvv(false);
  for (auto _ : state) {
    model.calcCvv(block, 165426, cvv);
    benchmark::DoNotOptimize(cvv(0, 0));
  }
  state.SetItemsProcessed(state.iterations() * 64 * 64);
}

}  // namespace

BENCHMARK_TEMPLATE(BM_allCovasByHand, Spherical)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovas, Spherical)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovasByHand, Cubic)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovas, Cubic)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovasByHand, Exponential)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovas, Exponential)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovasByHand, Gaussian)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovas, Gaussian)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovasByHand, Matern1)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK_TEMPLATE(BM_allCovas, Matern1)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovasThreeStructures)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovasUpper)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_allCovasRotated)->Arg(16)->Arg(32)->Arg(500);
BENCHMARK(BM_pointSetByHand)->Arg(16)->Arg(1000);
BENCHMARK(BM_pointSet)->Arg(16)->Arg(1000);
BENCHMARK(BM_blockSet4x4)->Arg(16)->Arg(1000);
BENCHMARK(BM_cvv8x8ByHand);
BENCHMARK(BM_cvv8x8);

BENCHMARK_MAIN();
