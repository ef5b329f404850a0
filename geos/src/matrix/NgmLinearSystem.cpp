#include "geos/matrix/NgmLinearSystem.h"

#include "matrix/private/NgmSymmetricPivots.h"
#include "matrix/private/NgmSymmetricSolver.h"

#include <algorithm>
#include <cmath>

NgmLinearSystem::NgmLinearSystem() : NgmLinearSystem(1, 1, true) {}

NgmLinearSystem::NgmLinearSystem(int n, int nRhs, bool symmetric)
    : _solved(false),
      _lhs(n, n, symmetric),
      _rhs(n, nRhs, false),
      _results(n, nRhs, false),
      _pivots(std::size_t(std::max(n, 0))),
      _factor(symmetric)
{
}

void NgmLinearSystem::resize(int n, int nRhs)
{
  _lhs.resize(n, n, false);
  _rhs.resize(n, nRhs, false);
  _results.resize(n, nRhs, false);
  _pivots.resize(std::size_t(std::max(n, 0)));
  _solved = false;
}

void NgmLinearSystem::setNullEquation(int i)
{
  const int n = _lhs.getNRows();
  double *column = _lhs.elements() + qint64(i) * n;
  std::fill(column, column + n, 0.);
  if (_lhs.mustBeSymmetrical())
    for (int j = 0; j < n; ++j)
      _lhs.elements()[i + qint64(j) * n] = 0.;
  column[i] = 1.;
  for (int t = 0; t < _rhs.getNColumns(); ++t)
    _rhs.elements()[i + qint64(t) * _rhs.getNRows()] = 0.;
  _solved = false;
}

int NgmLinearSystem::solve()
{
  const bool small = _lhs.mustBeSymmetrical() && _lhs.getNRows() <= NgmSymmetricSolver::MOST_ROWS;
  const int info = small ? _solveSmall() : _solveLarge();
  _solved = info == 0;
  return info;
}

/// What NgmMatrix::resolveEquat() does, without copying the factor back.
int NgmLinearSystem::_solveSmall()
{
  const int n = _lhs.getNRows();
  const int nRhs = _rhs.getNColumns();
  const int rows = NgmSymmetricSolver::paddedRows(n);
  const std::size_t needed = std::size_t(rows) * std::size_t(n + nRhs);
  if (_smallFactor.size() < needed)
    _smallFactor.resize(needed);
  double *a = _smallFactor.data();
  double *x = a + std::size_t(rows) * std::size_t(n);
  NgmSymmetricSolver::copyUpper(n, _lhs.constElements(), n, a, rows);
  NgmSymmetricSolver::copyColumns(n, nRhs, _rhs.constElements(), n, x, rows);
  const int info = NgmSymmetricSolver::solve(n, a, _pivots.data(), nRhs, x);
  if (info != 0) {
    _results.copyDeep(_rhs);
    return info;
  }
  NgmSymmetricSolver::copyColumns(n, nRhs, x, rows, _results.elements(), n);
  return _findNullPivot(a, rows);
}

int NgmLinearSystem::_solveLarge()
{
  _factor.copyDeep(_lhs);
  _results.copyDeep(_rhs);
  const int info = _factor.resolveEquat(_results, _pivots.data(), 1);
  if (info != 0 || !_lhs.mustBeSymmetrical())
    return info;
  return _findNullPivot(_factor.constElements(), _lhs.getNRows());
}

int NgmLinearSystem::_findNullPivot(const double *factor, int factorRows)
{
  const int n = _lhs.getNRows();
  _growth.resize(2 * std::size_t(n));
  const double *a = _lhs.constElements();
  for (int i = 0; i < n; ++i)
    _growth[std::size_t(i)] = a[std::size_t(i) * std::size_t(n + 1)];
  return findNullPivot(n, factor, factorRows, _pivots.data(), _growth.data(), _growth.data() + n);
}

QString NgmLinearSystem::debug(int level) const
{
  return QStringLiteral("Linear system\n") +
         QStringLiteral("Solved: %1\n")
             .arg(_solved ? QStringLiteral("true") : QStringLiteral("false")) +
         QStringLiteral("LHS\n") + _lhs.debug(level) + QStringLiteral("RHS\n") + _rhs.debug(level) +
         QStringLiteral("Solution\n") + _results.debug(level);
}
