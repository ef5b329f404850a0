#pragma once

/// What a variogram model and its structures share: the drift degree that they may rely on, the
/// dimension of space and the size of the field.
class NgmModelContext
{
public:
  NgmModelContext() = default;
  NgmModelContext(int maxIrfDegree, int nDimensions, double fieldSize)
      : _maxIrfDegree(maxIrfDegree), _nDimensions(nDimensions), _fieldSize(fieldSize)
  {
  }

  /// Highest degree of polynomial drift (order of the intrinsic random function) that structures
  /// may need; a structure of a higher degree is refused. -1 admits stationary structures only.
  int getMaxIrfDegree() const { return _maxIrfDegree; }
  void setMaxIrfDegree(int degree) { _maxIrfDegree = degree; }

  /// 1, 2 or 3.
  int getNDimensions() const { return _nDimensions; }
  void setNDimensions(int nDimensions) { _nDimensions = nDimensions; }

  /// Extension of the field in units of length; used by generalized covariances only.
  double getFieldSize() const { return _fieldSize; }
  void setFieldSize(double fieldSize) { _fieldSize = fieldSize; }

private:
  int _maxIrfDegree = 99;
  int _nDimensions = 3;
  double _fieldSize = 0.;
};
