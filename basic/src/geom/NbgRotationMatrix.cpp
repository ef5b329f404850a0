#include "basic/geom/NbgRotationMatrix.h"

#include <algorithm>

NbgRotationMatrix::NbgRotationMatrix(const double *data)
{
  std::copy(data, data + 9, _m);
}

NbgRotationMatrix::NbgRotationMatrix(const NbgVector3D &u, const NbgVector3D &v,
                                     const NbgVector3D &w)
    : _m{u.x(), u.y(), u.z(), v.x(), v.y(), v.z(), w.x(), w.y(), w.z()}
{
}

NbgRotationMatrix NbgRotationMatrix::inverse() const
{
  const double rows[9] = {_m[0], _m[3], _m[6], _m[1], _m[4], _m[7], _m[2], _m[5], _m[8]};
  return NbgRotationMatrix(rows);
}

bool NbgRotationMatrix::isIdentity(double tolerance) const
{
  return isEqual(NbgRotationMatrix(), tolerance);
}

bool NbgRotationMatrix::isEqual(const NbgRotationMatrix &other, double tolerance) const
{
  return std::equal(_m, _m + 9, other._m,
                    [tolerance](double a, double b) { return std::fabs(a - b) <= tolerance; });
}

bool NbgRotationMatrix::isOrthonormal(double tolerance) const
{
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b <= a; ++b) {
      const double expected = a == b ? 1. : 0.;
      // Written so that NaN fails.
      if (!(std::fabs(getColumn(a) * getColumn(b) - expected) <= tolerance))
        return false;
    }
  }
  return getColumn(0).crossProduct(getColumn(1)) * getColumn(2) > 0.;
}

NbgRotationMatrix operator*(const NbgRotationMatrix &a, const NbgRotationMatrix &b)
{
  return NbgRotationMatrix(a.rotate(b.getColumn(0)), a.rotate(b.getColumn(1)),
                           a.rotate(b.getColumn(2)));
}
