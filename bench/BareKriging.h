#pragma once

#include "BenchPoints.h"

#include <mkl.h>
#include <nanoflann.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

/// The bare arithmetic of kriging on plain arrays: kd-tree query, covariances, one LAPACK solve per
/// target; and for a unique neighborhood a Cholesky factor, then products and triangular solves for
/// 256 targets at a time. What a run is measured against, and where its check sums come from.
namespace bench {

constexpr double range = 200.;
constexpr double scaledRange = 1. / range;

/// Correlation of the structure at a squared distance.
inline double spherical(double squared)
{
  const double u = std::min(1., std::sqrt(squared) * scaledRange);
  return 1. - 0.5 * u * (3. - u * u);
}

/// Nugget and sill of each pair of variables.
constexpr double nuggets[2][2] = {{0.1, 0.05}, {0.05, 0.2}};
constexpr double sills[2][2] = {{0.9, 0.5}, {0.5, 0.8}};

/// Samples of a problem; the third dimension and the second variable are there on request.
struct Samples
{
  std::vector<double> x, y, z;
  std::vector<double> values[2];

  Samples(int n, bool is3D)
  {
    Points points(n);
    x = std::move(points.x);
    y = std::move(points.y);
    values[0] = std::move(points.z);
    for (int i = 0; i < n; ++i) {
      z.push_back(is3D ? 1000. * uniform(20240602, std::uint64_t(i)) : 0.);
      values[1].push_back(0.5 * values[0][std::size_t(i)] + normal(778, std::uint64_t(i)));
    }
  }

  std::size_t kdtree_get_point_count() const { return x.size(); }
  double kdtree_get_pt(std::size_t i, std::size_t axis) const
  {
    return axis == 0 ? x[i] : axis == 1 ? y[i] : z[i];
  }
  template <class Box>
  bool kdtree_get_bbox(Box &) const
  {
    return false;
  }
};

/// side x side (x levels) targets at the centres of the cells of the field.
struct Problem
{
  int nSamples;
  int side;
  int levels;  ///< 0 in the plane
  int nNeighbors;
  int blockSide;  ///< points along a side of the block; 1 for points
  int nVariables;

  bool is3D() const { return levels > 0; }
  int nTargets() const { return side * side * std::max(1, levels); }
  double cell() const { return 1000. / side; }
  void target(int rank, double *point) const
  {
    const int perLevel = side * side;
    point[0] = (rank % perLevel % side + 0.5) * cell();
    point[1] = (rank % perLevel / side + 0.5) * cell();
    point[2] = is3D() ? (rank / perLevel + 0.5) * 1000. / levels : 0.;
  }
};

template <int dimension>
using Tree = nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Samples>,
                                                 Samples, dimension, unsigned>;

/// Moving neighborhood; one solve per target.
template <int dimension>
class BareMoving
{
public:
  BareMoving(const Samples &samples, const Problem &problem)
      : _samples(samples),
        _problem(problem),
        _tree(dimension, samples, {10}),
        _order(problem.nVariables * (problem.nNeighbors + 1)),
        _lhs(std::size_t(_order * _order)),
        _rhs(std::size_t(_order * problem.nVariables)),
        _solution(_rhs.size()),
        _work(std::size_t(64 * _order)),
        _pivots(std::size_t(_order)),
        _ranks(std::size_t(problem.nNeighbors)),
        _squared(_ranks.size())
  {
    _tree.buildIndex();
  }

  /// Sum of all estimates.
  double run()
  {
    double sum = 0.;
    for (int target = 0; target < _problem.nTargets(); ++target)
      sum += _krige(target);
    return sum;
  }

private:
  double _krige(int target)
  {
    const int n = _problem.nNeighbors;
    const int nVariables = _problem.nVariables;
    double point[3];
    _problem.target(target, point);
    _tree.knnSearch(point, std::size_t(n), _ranks.data(), _squared.data());
    for (int s = 0; s < n; ++s) {
      _x[s] = _samples.x[_ranks[s]];
      _y[s] = _samples.y[_ranks[s]];
      _z[s] = _samples.z[_ranks[s]];
    }
    if (nVariables == 1)
      _fillOne(point);
    else
      _fillTwo();
    std::copy(_rhs.begin(), _rhs.end(), _solution.begin());
    int info = 0;
    const int workSize = int(_work.size());
    dsysv("U", &_order, &nVariables, _lhs.data(), &_order, _pivots.data(), _solution.data(),
          &_order, _work.data(), &workSize, &info);

    double sum = 0.;
    double variance = 0.;
    for (int t = 0; t < nVariables; ++t) {
      const double *solution = _solution.data() + t * _order;
      for (int e = 0; e < _order; ++e)
        variance -= solution[e] * _rhs[std::size_t(t * _order + e)];
      for (int v = 0; v < nVariables; ++v)
        for (int s = 0; s < n; ++s)
          sum += solution[s * nVariables + v] * _samples.values[v][_ranks[s]];
    }
    _sink = variance;
    return sum;
  }

  double _squaredDistance(int i, int j) const
  {
    const double dx = _x[i] - _x[j], dy = _y[i] - _y[j];
    if constexpr (dimension == 2)
      return dx * dx + dy * dy;
    const double dz = _z[i] - _z[j];
    return dx * dx + dy * dy + dz * dz;
  }

  void _fillOne(const double *point)
  {
    const int n = _problem.nNeighbors;
    for (int j = 0; j < n; ++j) {
      double *column = &_lhs[std::size_t(j * _order)];
      for (int i = 0; i <= j; ++i) {
        column[i] = sills[0][0] * spherical(_squaredDistance(i, j));
      }
      column[j] += nuggets[0][0];
      _lhs[std::size_t(j + n * _order)] = 1.;
      _rhs[std::size_t(j)] = sills[0][0] * _towards(point, j);
    }
    _lhs[std::size_t(n + n * _order)] = 0.;
    _rhs[std::size_t(n)] = 1.;
  }

  /// Correlation of sample s with the target, a point or a block.
  double _towards(const double *point, int s) const
  {
    const int side = _problem.blockSide;
    if (side == 1)
      return spherical(_squared[std::size_t(s)]);
    double sum = 0.;
    for (int a = 0; a < side; ++a) {
      const double dx = _x[s] - point[0] - ((a + 0.5) / side - 0.5) * _problem.cell();
      for (int b = 0; b < side; ++b) {
        const double dy = _y[s] - point[1] - ((b + 0.5) / side - 0.5) * _problem.cell();
        sum += spherical(dx * dx + dy * dy);
      }
    }
    return sum / (side * side);
  }

  void _fillTwo()
  {
    const int n = _problem.nNeighbors;
    std::fill(_lhs.begin(), _lhs.end(), 0.);
    std::fill(_rhs.begin(), _rhs.end(), 0.);
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i <= j; ++i) {
        const double rho = spherical(_squaredDistance(i, j));
        for (int b = 0; b < 2; ++b)
          for (int a = 0; a < 2; ++a)
            _lhs[std::size_t(2 * i + a + (2 * j + b) * _order)] =
                sills[a][b] * rho + (i == j ? nuggets[a][b] : 0.);
      }
      const double rho = spherical(_squared[std::size_t(j)]);
      for (int t = 0; t < 2; ++t) {
        _lhs[std::size_t(2 * j + t + (2 * n + t) * _order)] = 1.;
        for (int a = 0; a < 2; ++a)
          _rhs[std::size_t(2 * j + a + t * _order)] = sills[a][t] * rho;
      }
    }
    for (int t = 0; t < 2; ++t)
      _rhs[std::size_t(2 * n + t + t * _order)] = 1.;
  }

  const Samples &_samples;
  Problem _problem;
  Tree<dimension> _tree;
  int _order;
  std::vector<double> _lhs, _rhs, _solution, _work;
  std::vector<int> _pivots;
  std::vector<unsigned> _ranks;
  std::vector<double> _squared;
  double _x[128], _y[128], _z[128];
  volatile double _sink = 0.;
};

/// Unique neighborhood: estimates from the dual vector, variances from one triangular solve:
/// C(0) - |v|^2 + (1 - u.v)^2 / |u|^2 with v = L^-1 k and u = L^-1 1. Sum of all estimates.
inline double runBareUnique(const Samples &samples, const Problem &problem)
{
  const int n = problem.nSamples, batch = 256;
  std::vector<double> lhs(std::size_t(n) * std::size_t(n));
  for (int j = 0; j < n; ++j) {
    double *column = &lhs[std::size_t(j) * std::size_t(n)];
    for (int i = j; i < n; ++i) {
      const double dx = samples.x[i] - samples.x[j], dy = samples.y[i] - samples.y[j];
      column[i] = sills[0][0] * spherical(dx * dx + dy * dy);
    }
    column[j] += nuggets[0][0];
  }
  int info = 0;
  dpotrf("L", &n, lhs.data(), &n, &info);
  std::vector<double> u(std::size_t(n), 1.), w(samples.values[0]);
  const int one = 1;
  for (std::vector<double> *vector : {&u, &w})
    dtrsv("L", "N", "N", &n, lhs.data(), &n, vector->data(), &one);
  const double uu = cblas_ddot(n, u.data(), 1, u.data(), 1);
  const double mean = cblas_ddot(n, u.data(), 1, w.data(), 1) / uu;
  for (int i = 0; i < n; ++i)
    w[i] -= mean * u[i];

  std::vector<double> columns(std::size_t(n) * batch);
  double sum = 0.;
  volatile double sink = 0.;
  for (int first = 0; first < problem.nTargets(); first += batch) {
    const int m = std::min(batch, problem.nTargets() - first);
    for (int b = 0; b < m; ++b) {
      double point[3];
      problem.target(first + b, point);
      double *column = &columns[std::size_t(b) * std::size_t(n)];
      for (int i = 0; i < n; ++i) {
        const double dx = samples.x[i] - point[0], dy = samples.y[i] - point[1];
        column[i] = sills[0][0] * spherical(dx * dx + dy * dy);
      }
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, n, m, 1.,
                lhs.data(), n, columns.data(), n);
    for (int b = 0; b < m; ++b) {
      const double *v = &columns[std::size_t(b) * std::size_t(n)];
      const double rest = 1. - cblas_ddot(n, u.data(), 1, v, 1);
      sum += mean + cblas_ddot(n, w.data(), 1, v, 1);
      sink = 1. - cblas_ddot(n, v, 1, v, 1) + rest * rest / uu;
    }
  }
  (void)sink;
  return sum;
}

/// The bare run of a problem; 0 neighbors stand for all samples.
inline double runBare(const Samples &samples, const Problem &problem)
{
  if (problem.nNeighbors == 0)
    return runBareUnique(samples, problem);
  return problem.is3D() ? BareMoving<3>(samples, problem).run()
                        : BareMoving<2>(samples, problem).run();
}

}  // namespace bench
