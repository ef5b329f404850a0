#include "fit/private/NgmBoundedQuadratic.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// Relative to the diagonal and to its largest element: keeps what the function does not depend on
// where it is.
constexpr double RIDGE = 1e-10;
constexpr double SMALLEST_RIDGE = 1e-14;
constexpr double NULL_SLOPE = 1e-12;

/// Factorizes the lower triangle of an n x n matrix in place and solves for the right-hand side.
void solveCholesky(std::size_t n, double *a, double *rhs)
{
  for (std::size_t j = 0; j < n; ++j) {
    double pivot = a[j + j * n];
    for (std::size_t k = 0; k < j; ++k)
      pivot -= a[j + k * n] * a[j + k * n];
    pivot = pivot > 0. ? std::sqrt(pivot) : 1e150;
    a[j + j * n] = pivot;
    for (std::size_t i = j + 1; i < n; ++i) {
      double sum = a[i + j * n];
      for (std::size_t k = 0; k < j; ++k)
        sum -= a[i + k * n] * a[j + k * n];
      a[i + j * n] = sum / pivot;
    }
  }
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < i; ++k)
      rhs[i] -= a[i + k * n] * rhs[k];
    rhs[i] /= a[i + i * n];
  }
  for (std::size_t i = n; i-- > 0;) {
    for (std::size_t k = i + 1; k < n; ++k)
      rhs[i] -= a[k + i * n] * rhs[k];
    rhs[i] /= a[i + i * n];
  }
}

}  // namespace

bool NgmBoundedQuadratic::minimize(int n, const double *hessian, const double *gradient,
                                   const double *lower, const double *upper, double *move)
{
  _status.assign(std::size_t(n), FREE);
  std::fill(move, move + n, 0.);
  double largest = 0.;
  for (int i = 0; i < n; ++i) {
    largest = std::max(largest, std::fabs(gradient[i]));
    if (upper[i] <= lower[i])
      _status[std::size_t(i)] = AT_LOWER;
  }
  _tolerance = NULL_SLOPE * largest;
  _updateSlope(n, hessian, gradient, move);

  const int maximum = 20 * n + 20;
  for (int change = 0; change < maximum; ++change) {
    _solveFree(n, hessian);
    const bool isFullStep = _advance(lower, upper, move);
    _updateSlope(n, hessian, gradient, move);
    if (isFullStep && !_freeOne(n, lower, upper))
      return true;
  }
  return false;
}

void NgmBoundedQuadratic::_solveFree(int n, const double *hessian)
{
  _free.clear();
  double largest = 0.;
  for (int i = 0; i < n; ++i) {
    if (_status[std::size_t(i)] == FREE)
      _free.push_back(i);
    largest = std::max(largest, hessian[i + std::size_t(i) * std::size_t(n)]);
  }
  const std::size_t m = _free.size();
  _factor.resize(m * m);
  _step.resize(m);
  for (std::size_t b = 0; b < m; ++b) {
    const double *column = hessian + std::size_t(_free[b]) * std::size_t(n);
    for (std::size_t a = b; a < m; ++a)
      _factor[a + b * m] = column[_free[a]];
    _factor[b + b * m] += RIDGE * column[_free[b]] + SMALLEST_RIDGE * largest + 1e-300;
    _step[b] = -_slope[std::size_t(_free[b])];
  }
  solveCholesky(m, _factor.data(), _step.data());
}

/// Goes along the step to its end (true) or to the first bound.
bool NgmBoundedQuadratic::_advance(const double *lower, const double *upper, double *move)
{
  double fraction = 1.;
  int blocking = -1;
  for (std::size_t a = 0; a < _free.size(); ++a) {
    const int i = _free[a];
    const double bound = _step[a] < 0. ? lower[i] : upper[i];
    if (_step[a] == 0. || std::fabs(bound - move[i]) >= fraction * std::fabs(_step[a]))
      continue;
    fraction = std::fabs((bound - move[i]) / _step[a]);
    blocking = int(a);
  }
  for (std::size_t a = 0; a < _free.size(); ++a) {
    const int i = _free[a];
    move[i] = std::max(lower[i], std::min(upper[i], move[i] + fraction * _step[a]));
  }
  if (blocking < 0)
    return true;
  const int i = _free[std::size_t(blocking)];
  const bool isLower = _step[std::size_t(blocking)] < 0.;
  _status[std::size_t(i)] = isLower ? AT_LOWER : AT_UPPER;
  move[i] = isLower ? lower[i] : upper[i];
  return false;
}

void NgmBoundedQuadratic::_updateSlope(int n, const double *hessian, const double *gradient,
                                       const double *move)
{
  _slope.assign(gradient, gradient + n);
  for (int j = 0; j < n; ++j) {
    const double *column = hessian + std::size_t(j) * std::size_t(n);
    for (int i = 0; i < n; ++i)
      _slope[std::size_t(i)] += column[i] * move[j];
  }
}

/// Frees the component that gains most by leaving its bound; false when none does.
bool NgmBoundedQuadratic::_freeOne(int n, const double *lower, const double *upper)
{
  int best = -1;
  double gain = _tolerance;
  for (int i = 0; i < n; ++i) {
    if (_status[std::size_t(i)] == FREE || upper[i] <= lower[i])
      continue;
    const double slope = _slope[std::size_t(i)];
    const double inwards = _status[std::size_t(i)] == AT_LOWER ? -slope : slope;
    if (inwards > gain) {
      gain = inwards;
      best = i;
    }
  }
  if (best < 0)
    return false;
  _status[std::size_t(best)] = FREE;
  return true;
}
