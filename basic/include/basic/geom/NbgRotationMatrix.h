#pragma once

#include "basic/geom/NbgVector3D.h"

/// The 3 x 3 matrix of a rotation. Its columns are the local axes in world coordinates; its data is
/// kept column by column.
class NbgRotationMatrix
{
public:
  /// The identity.
  constexpr NbgRotationMatrix() : _m{1., 0., 0., 0., 1., 0., 0., 0., 1.} {}

  /// From nine values column by column; not checked, see isOrthonormal().
  explicit NbgRotationMatrix(const double *data);

  /// The matrix with these columns.
  NbgRotationMatrix(const NbgVector3D &u, const NbgVector3D &v, const NbgVector3D &w);

  constexpr double get(int row, int column) const { return _m[3 * column + row]; }
  void set(int row, int column, double value) { _m[3 * column + row] = value; }

  /// The nine elements, column by column.
  const double *getData() const { return _m; }

  NbgVector3D getColumn(int column) const
  {
    return {_m[3 * column], _m[3 * column + 1], _m[3 * column + 2]};
  }

  /// M v: local to world.
  constexpr NbgVector3D rotate(const NbgVector3D &v) const
  {
    return {_m[0] * v.x() + _m[3] * v.y() + _m[6] * v.z(),
            _m[1] * v.x() + _m[4] * v.y() + _m[7] * v.z(),
            _m[2] * v.x() + _m[5] * v.y() + _m[8] * v.z()};
  }

  /// M' v: world to local.
  constexpr NbgVector3D rotateBack(const NbgVector3D &v) const
  {
    return {_m[0] * v.x() + _m[1] * v.y() + _m[2] * v.z(),
            _m[3] * v.x() + _m[4] * v.y() + _m[5] * v.z(),
            _m[6] * v.x() + _m[7] * v.y() + _m[8] * v.z()};
  }

  /// The transpose.
  NbgRotationMatrix inverse() const;

  bool isIdentity(double tolerance = 1e-9) const;

  /// All elements differ by at most `tolerance`.
  bool isEqual(const NbgRotationMatrix &other, double tolerance = 1e-9) const;

  /// M'M = I to `tolerance` in every element, and right-handed. False when an element is not
  /// finite.
  bool isOrthonormal(double tolerance = 1e-6) const;

private:
  double _m[9];
};

/// The rotation by b, then by a.
NbgRotationMatrix operator*(const NbgRotationMatrix &a, const NbgRotationMatrix &b);
