#include "geos/matrix/NgmMatrixScaler.h"

#include "basic/error/NbeAssertion.h"

#include <cmath>

NgmMatrixScaler::NgmMatrixScaler() : _signs(0, 0, true), _active(false) {}

NgmMatrixScaler::NgmMatrixScaler(const NgmMatrix &matrix)
    : _signs(matrix.getNRows(), matrix.getNRows(), true), _active(true)
{
  if (!matrix.isSquared())
    NBE_FAIL(QStringLiteral("Inconsistent matrix dimension"));
  for (int i = 0; i < matrix.getNRows(); ++i) {
    _scaler.append(matrix(i, i));
    _invScaler.append(1. / matrix(i, i));
    for (int j = 0; j <= i; ++j)
      _signs.setElement(i, j, matrix(i, j) >= 0. ? 1. : -1.);
  }
}

double NgmMatrixScaler::_scale(const QVector<double> &scaler, int i, int j, double value) const
{
  return _signs(i, j) * value * std::sqrt(scaler.at(i)) * std::sqrt(scaler.at(j));
}

NgmMatrix NgmMatrixScaler::_scale(const QVector<double> &scaler, const NgmMatrix &matrix) const
{
  const int n = scaler.size();
  NgmMatrix scaled(matrix);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i)
      scaled.setElement(i, j, _scale(scaler, i, j, matrix(i, j)));
  return scaled;
}

NgmMatrix NgmMatrixScaler::convertMatrixToScaled(const NgmMatrix &matrix) const
{
  if (!_active)
    return matrix;
  _checkDimension(matrix);
  return _scale(_invScaler, matrix);
}

NgmMatrix NgmMatrixScaler::convertMatrixFromScaled(const NgmMatrix &matrix) const
{
  if (!_active)
    return matrix;
  _checkDimension(matrix);
  return _scale(_scaler, matrix);
}

double NgmMatrixScaler::convertElementToScaled(int i, int j, double value) const
{
  if (!_active)
    return value;
  _checkElement(i, j);
  return _scale(_invScaler, i, j, value);
}

double NgmMatrixScaler::convertElementFromScaled(int i, int j, double value) const
{
  if (!_active)
    return value;
  _checkElement(i, j);
  return _scale(_scaler, i, j, value);
}

void NgmMatrixScaler::_checkDimension(const NgmMatrix &matrix) const
{
  if (matrix.getNRows() != _scaler.size() || matrix.getNColumns() != _scaler.size())
    NBE_FAIL(QStringLiteral("Inconsistent matrix dimension"));
}

void NgmMatrixScaler::_checkElement(int i, int j) const
{
  if (i < 0 || j < 0 || i >= _scaler.size() || j >= _scaler.size())
    NBE_FAIL(QStringLiteral("Invalid matrix element requested"));
}
