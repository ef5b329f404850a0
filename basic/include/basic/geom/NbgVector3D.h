#pragma once

#include "basic/base/NbbGlobal.h"

#include <QString>
#include <QVector>

#include <cmath>

class QDataStream;

/// A point or a vector in three dimensions: three doubles, nothing else, so that arrays of vectors
/// are xyz-interleaved arrays of doubles.
///
/// The default is (0, 0, 0). A component that is not a defined double makes the vector undefined;
/// the arithmetic does not test for it.
class NbgVector3D
{
public:
  constexpr NbgVector3D() : _v{0., 0., 0.} {}
  constexpr NbgVector3D(double x, double y, double z = 0.) : _v{x, y, z} {}

  static const NbgVector3D Null;
  static const NbgVector3D Undefined;
  static const NbgVector3D Unit;  ///< (1, 1, 1)
  static const NbgVector3D X;
  static const NbgVector3D Y;
  static const NbgVector3D Z;

  constexpr double x() const { return _v[0]; }
  constexpr double y() const { return _v[1]; }
  constexpr double z() const { return _v[2]; }
  void setX(double x) { _v[0] = x; }
  void setY(double y) { _v[1] = y; }
  void setZ(double z) { _v[2] = z; }
  void set(double x, double y, double z)
  {
    _v[0] = x;
    _v[1] = y;
    _v[2] = z;
  }

  /// Component 0, 1 or 2; not checked.
  constexpr double operator[](int component) const { return _v[component]; }
  double &operator[](int component) { return _v[component]; }
  const double *getData() const { return _v; }
  double *getData() { return _v; }

  NbgVector3D &operator+=(const NbgVector3D &b)
  {
    set(_v[0] + b._v[0], _v[1] + b._v[1], _v[2] + b._v[2]);
    return *this;
  }
  NbgVector3D &operator-=(const NbgVector3D &b)
  {
    set(_v[0] - b._v[0], _v[1] - b._v[1], _v[2] - b._v[2]);
    return *this;
  }
  NbgVector3D &operator*=(double factor)
  {
    set(_v[0] * factor, _v[1] * factor, _v[2] * factor);
    return *this;
  }
  NbgVector3D &operator/=(double divisor)
  {
    set(_v[0] / divisor, _v[1] / divisor, _v[2] / divisor);
    return *this;
  }

  constexpr double dotProduct(const NbgVector3D &b) const
  {
    return _v[0] * b._v[0] + _v[1] * b._v[1] + _v[2] * b._v[2];
  }
  constexpr NbgVector3D crossProduct(const NbgVector3D &b) const
  {
    return {_v[1] * b._v[2] - _v[2] * b._v[1], _v[2] * b._v[0] - _v[0] * b._v[2],
            _v[0] * b._v[1] - _v[1] * b._v[0]};
  }

  /// (x bx, y by, z bz).
  constexpr NbgVector3D componentsProduct(const NbgVector3D &b) const
  {
    return {_v[0] * b._v[0], _v[1] * b._v[1], _v[2] * b._v[2]};
  }
  /// Multiplies each component by that of `b`, in place.
  void makeComponentsProduct(const NbgVector3D &b) { *this = componentsProduct(b); }

  constexpr double squaredNorm() const { return dotProduct(*this); }
  double norm() const { return std::sqrt(squaredNorm()); }

  /// Gives the vector the length `length`, keeping its direction; the null vector stays null.
  void normalize(double length = 1.);
  NbgVector3D normalized(double length = 1.) const
  {
    NbgVector3D result(*this);
    result.normalize(length);
    return result;
  }

  /// The largest absolute value of the components, and its square.
  double chebychevDist() const
  {
    return std::fmax(std::fabs(_v[0]), std::fmax(std::fabs(_v[1]), std::fabs(_v[2])));
  }
  double squaredChebychevDist() const
  {
    const double distance = chebychevDist();
    return distance * distance;
  }

  /// The smallest, the largest component.
  constexpr double minimum() const { return _min(_v[0], _min(_v[1], _v[2])); }
  constexpr double maximum() const { return _max(_v[0], _max(_v[1], _v[2])); }

  /// Component by component.
  constexpr NbgVector3D minimum(const NbgVector3D &b) const
  {
    return {_min(_v[0], b._v[0]), _min(_v[1], b._v[1]), _min(_v[2], b._v[2])};
  }
  constexpr NbgVector3D maximum(const NbgVector3D &b) const
  {
    return {_max(_v[0], b._v[0]), _max(_v[1], b._v[1]), _max(_v[2], b._v[2])};
  }

  /// (1/x, 1/y, 1/z); the inverse of 0 is the undefined value, which is huge and finite, so a
  /// product with it tells 0 from all other values.
  constexpr NbgVector3D inverse() const
  {
    return {_inverse(_v[0]), _inverse(_v[1]), _inverse(_v[2])};
  }

  /// All three components are defined.
  constexpr bool isDefined() const
  {
    return NbbGlobal::isDefined(_v[0]) && NbbGlobal::isDefined(_v[1]) &&
           NbbGlobal::isDefined(_v[2]);
  }

  /// Inside the ellipsoid of these radii around the origin, border included. Along an axis of
  /// radius 0 only 0 is inside.
  bool isInEllipsoid(const NbgVector3D &radii) const
  {
    double sum = 0.;
    for (int axis = 0; axis < 3; ++axis) {
      if (_v[axis] == 0.)
        continue;
      const double ratio = _v[axis] / radii._v[axis];
      sum += ratio * ratio;
    }
    return sum <= 1.;
  }

  /// Borehole angles in degrees: azimuth clockwise from north (Y) in [0, 360), dip positive
  /// downward (90 is straight down). Azimuth 0 for a vertical vector, both 0 for the null vector.
  void getAzimuthDip(double &azimuth, double &dip) const;

  /// Angle in the horizontal plane, from X towards Y, in radians, in [0, 2 pi); 0 for a vertical or
  /// null vector.
  double dirHorizontal() const;

  QVector<double> toVector() const { return {_v[0], _v[1], _v[2]}; }

  /// "(x, y, z)", with the text of missing values for undefined components.
  QString toString() const;
  /// toString(), indented by `level` steps, with a line break.
  QString debug(int level) const;

private:
  static constexpr double _min(double a, double b) { return b < a ? b : a; }
  static constexpr double _max(double a, double b) { return a < b ? b : a; }
  static constexpr double _inverse(double a) { return a == 0. ? NbbGlobal::D_FFFF : 1. / a; }

  double _v[3];
};

inline constexpr NbgVector3D NbgVector3D::Null(0., 0., 0.);
inline constexpr NbgVector3D NbgVector3D::Undefined(NbbGlobal::D_FFFF, NbbGlobal::D_FFFF,
                                                    NbbGlobal::D_FFFF);
inline constexpr NbgVector3D NbgVector3D::Unit(1., 1., 1.);
inline constexpr NbgVector3D NbgVector3D::X(1., 0., 0.);
inline constexpr NbgVector3D NbgVector3D::Y(0., 1., 0.);
inline constexpr NbgVector3D NbgVector3D::Z(0., 0., 1.);

constexpr NbgVector3D operator+(const NbgVector3D &a, const NbgVector3D &b)
{
  return {a.x() + b.x(), a.y() + b.y(), a.z() + b.z()};
}
constexpr NbgVector3D operator-(const NbgVector3D &a, const NbgVector3D &b)
{
  return {a.x() - b.x(), a.y() - b.y(), a.z() - b.z()};
}
constexpr NbgVector3D operator-(const NbgVector3D &a)
{
  return {-a.x(), -a.y(), -a.z()};
}
constexpr NbgVector3D operator*(const NbgVector3D &a, double factor)
{
  return {a.x() * factor, a.y() * factor, a.z() * factor};
}
constexpr NbgVector3D operator*(double factor, const NbgVector3D &a)
{
  return a * factor;
}
constexpr NbgVector3D operator/(const NbgVector3D &a, double divisor)
{
  return {a.x() / divisor, a.y() / divisor, a.z() / divisor};
}
/// The dot product.
constexpr double operator*(const NbgVector3D &a, const NbgVector3D &b)
{
  return a.dotProduct(b);
}

constexpr bool operator==(const NbgVector3D &a, const NbgVector3D &b)
{
  return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}
constexpr bool operator!=(const NbgVector3D &a, const NbgVector3D &b)
{
  return !(a == b);
}
/// Lexicographic.
constexpr bool operator<(const NbgVector3D &a, const NbgVector3D &b)
{
  if (a.x() != b.x())
    return a.x() < b.x();
  return a.y() != b.y() ? a.y() < b.y() : a.z() < b.z();
}

inline void NbgVector3D::normalize(double length)
{
  // Scaled by the largest component first, so that neither tiny nor huge vectors lose their
  // squares.
  const double largest = chebychevDist();
  if (!(largest > 0.))
    return;
  *this /= largest;
  *this *= length / norm();
}

/// Component count (quint32, 3) and three doubles. Reading another count sets the stream's status
/// to ReadCorruptData and leaves the vector unchanged, as a short stream does.
QDataStream &operator<<(QDataStream &stream, const NbgVector3D &vector);
QDataStream &operator>>(QDataStream &stream, NbgVector3D &vector);

Q_DECLARE_TYPEINFO(NbgVector3D, Q_PRIMITIVE_TYPE);
