#include "fit/private/NgmSillDescent.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double SUFFICIENT_DECREASE = 1e-4;
constexpr double SMALLEST_LENGTH = 1e-14;
constexpr double SMALLEST_GRADIENT = 1e-20;  // squared
constexpr double SETTLED = 1e-13;
constexpr int SETTLED_STEPS = 20;

double dot(const double *a, const double *b, std::size_t n)
{
  double sum = 0.;
  for (std::size_t k = 0; k < n; ++k)
    sum += a[k] * b[k];
  return sum;
}

double dot(const std::vector<double> &a, const std::vector<double> &b)
{
  return dot(a.data(), b.data(), a.size());
}

}  // namespace

void NgmSillDescent::run(std::vector<double> &roots, int nbMaxIteration)
{
  _retract(roots);
  _value = _evaluate(roots);
  _computeGradient(roots);
  _length = 1.;
  int nSettled = 0;
  for (int n = 0; n < nbMaxIteration && nSettled < SETTLED_STEPS; ++n) {
    const double before = _value;
    if (!_step(roots))
      return;
    nSettled = before - _value < SETTLED * std::max(1e-3, std::fabs(_value)) ? nSettled + 1 : 0;
  }
}

double NgmSillDescent::_evaluate(const std::vector<double> &roots)
{
  const std::size_t n = _problem.nVariables;
  const std::size_t nStructures = _problem.nStructures;
  _sills.resize(_problem.grams.size() * nStructures);
  _slopes.resize(_sills.size());
  double value = 0.;
  for (std::size_t i = 0, pair = 0; i < n; ++i) {
    for (std::size_t j = 0; j <= i; ++j, ++pair) {
      double *sills = _sills.data() + pair * nStructures;
      double *slopes = _slopes.data() + pair * nStructures;
      for (std::size_t k = 0; k < nStructures; ++k)
        sills[k] = dot(&roots[i * _rowSize() + k * n], &roots[j * _rowSize() + k * n], n);
      for (std::size_t k = 0; k < nStructures; ++k) {
        slopes[k] =
            dot(_problem.grams[pair] + k * nStructures, sills, nStructures) - _problem.rhs[pair][k];
        value += (i == j ? 0.5 : 1.) * sills[k] * (slopes[k] - _problem.rhs[pair][k]);
      }
    }
  }
  return value;
}

/// For the slopes of the last evaluation.
void NgmSillDescent::_computeGradient(const std::vector<double> &roots)
{
  const std::size_t n = _problem.nVariables;
  const std::size_t nStructures = _problem.nStructures;
  _gradient.assign(roots.size(), 0.);
  for (std::size_t i = 0; i < n; ++i) {
    double *row = &_gradient[i * _rowSize()];
    for (std::size_t j = 0; j < n; ++j) {
      const std::size_t pair = i < j ? j * (j + 1) / 2 + i : i * (i + 1) / 2 + j;
      for (std::size_t k = 0; k < nStructures; ++k) {
        const double slope = 2. * _slopes[pair * nStructures + k];
        for (std::size_t m = 0; m < n; ++m)
          row[k * n + m] += slope * roots[j * _rowSize() + k * n + m];
      }
    }
    if (_problem.totals[i] < 0.)
      continue;
    const double *root = &roots[i * _rowSize()];
    const double norm = dot(root, root, _rowSize());
    const double radial = norm > 0. ? dot(row, root, _rowSize()) / norm : 0.;
    for (std::size_t m = 0; m < _rowSize(); ++m)
      row[m] -= radial * root[m];
  }
}

/// Gives rows with a total their norm.
void NgmSillDescent::_retract(std::vector<double> &roots) const
{
  for (std::size_t i = 0; i < _problem.nVariables; ++i) {
    if (_problem.totals[i] < 0.)
      continue;
    double *root = &roots[i * _rowSize()];
    const double norm = dot(root, root, _rowSize());
    const double factor = norm > 0. ? std::sqrt(_problem.totals[i] / norm) : 0.;
    for (std::size_t m = 0; m < _rowSize(); ++m)
      root[m] *= factor;
  }
}

/// False when no step decreases the criterion any more.
bool NgmSillDescent::_step(std::vector<double> &roots)
{
  const double slope = dot(_gradient, _gradient);
  if (slope < SMALLEST_GRADIENT)
    return false;
  double value = 0.;
  for (;; _length *= 0.5) {
    if (_length < SMALLEST_LENGTH)
      return false;
    _trial = roots;
    for (std::size_t m = 0; m < roots.size(); ++m)
      _trial[m] -= _length * _gradient[m];
    _retract(_trial);
    value = _evaluate(_trial);
    if (value <= _value - SUFFICIENT_DECREASE * _length * slope)
      break;
  }
  std::vector<double> &moves = roots;  // what was left is not needed any more
  for (std::size_t m = 0; m < roots.size(); ++m)
    moves[m] = _trial[m] - roots[m];
  const std::vector<double> before = _gradient;
  _computeGradient(_trial);
  double bend = 0.;
  for (std::size_t m = 0; m < roots.size(); ++m)
    bend += moves[m] * (_gradient[m] - before[m]);
  _length = bend != 0. ? dot(moves, moves) / std::fabs(bend) : 2. * _length;
  _length = std::min(_length, 1e6);
  roots = _trial;
  _value = value;
  return true;
}
