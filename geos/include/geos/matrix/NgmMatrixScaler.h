#pragma once

#include "geos/matrix/NgmMatrix.h"

/// Symmetric rescaling by the diagonal of a reference matrix, with a mask of signs.
///
/// scaled(i, j) = s(i, j) * v / sqrt(d_i * d_j), s(i, j) the sign of the reference element (+1 for
/// 0). An inactive scaler returns what it is given.
class NgmMatrixScaler
{
public:
  /// Inactive and empty.
  NgmMatrixScaler();

  /// Active, from a square matrix.
  explicit NgmMatrixScaler(const NgmMatrix &matrix);

  NgmMatrix convertMatrixToScaled(const NgmMatrix &matrix) const;
  NgmMatrix convertMatrixFromScaled(const NgmMatrix &matrix) const;
  double convertElementToScaled(int i, int j, double value) const;
  double convertElementFromScaled(int i, int j, double value) const;

  /// The diagonal terms d_i of the reference matrix, and 1 / d_i.
  const QVector<double> &getScaler() const { return _scaler; }
  const QVector<double> &getInvScaler() const { return _invScaler; }

  bool isActive() const { return _active; }
  void setActive(bool active) { _active = active; }

private:
  double _scale(const QVector<double> &scaler, int i, int j, double value) const;
  NgmMatrix _scale(const QVector<double> &scaler, const NgmMatrix &matrix) const;
  void _checkDimension(const NgmMatrix &matrix) const;
  void _checkElement(int i, int j) const;

  QVector<double> _scaler;
  QVector<double> _invScaler;
  NgmMatrix _signs;
  bool _active;
};
