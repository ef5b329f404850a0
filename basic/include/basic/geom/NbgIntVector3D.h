#pragma once

#include "basic/base/NbbGlobal.h"

#include <QString>

/// Three ints: node counts, cell indices or increments along the axes of a grid.
class NbgIntVector3D
{
public:
  constexpr NbgIntVector3D() : _v{0, 0, 0} {}
  constexpr NbgIntVector3D(int x, int y, int z = 0) : _v{x, y, z} {}

  static const NbgIntVector3D Null;
  static const NbgIntVector3D Unit;  ///< (1, 1, 1)

  constexpr int x() const { return _v[0]; }
  constexpr int y() const { return _v[1]; }
  constexpr int z() const { return _v[2]; }
  void setX(int x) { _v[0] = x; }
  void setY(int y) { _v[1] = y; }
  void setZ(int z) { _v[2] = z; }

  /// Component 0, 1 or 2; not checked.
  constexpr int operator[](int component) const { return _v[component]; }
  int &operator[](int component) { return _v[component]; }

  NbgIntVector3D &operator+=(const NbgIntVector3D &b);
  NbgIntVector3D &operator-=(const NbgIntVector3D &b);
  NbgIntVector3D &operator*=(int factor);

  /// The largest component.
  constexpr int maximum() const { return _max(_v[0], _max(_v[1], _v[2])); }
  /// Component by component.
  constexpr NbgIntVector3D maximum(const NbgIntVector3D &b) const
  {
    return {_max(_v[0], b._v[0]), _max(_v[1], b._v[1]), _max(_v[2], b._v[2])};
  }

  /// x y z in 64 bits (the product of three ints can exceed even these; node counts of a grid are
  /// checked by the grid).
  constexpr qint64 product() const { return qint64(_v[0]) * _v[1] * _v[2]; }

  /// All three components are defined.
  constexpr bool isDefined() const
  {
    return NbbGlobal::isDefined(_v[0]) && NbbGlobal::isDefined(_v[1]) &&
           NbbGlobal::isDefined(_v[2]);
  }

  /// "(x, y, z)".
  QString toString() const;

private:
  static constexpr int _max(int a, int b) { return a < b ? b : a; }

  int _v[3];
};

inline constexpr NbgIntVector3D NbgIntVector3D::Null(0, 0, 0);
inline constexpr NbgIntVector3D NbgIntVector3D::Unit(1, 1, 1);

constexpr NbgIntVector3D operator+(const NbgIntVector3D &a, const NbgIntVector3D &b)
{
  return {a.x() + b.x(), a.y() + b.y(), a.z() + b.z()};
}
constexpr NbgIntVector3D operator-(const NbgIntVector3D &a, const NbgIntVector3D &b)
{
  return {a.x() - b.x(), a.y() - b.y(), a.z() - b.z()};
}
constexpr NbgIntVector3D operator-(const NbgIntVector3D &a)
{
  return {-a.x(), -a.y(), -a.z()};
}
constexpr NbgIntVector3D operator*(const NbgIntVector3D &a, int factor)
{
  return {a.x() * factor, a.y() * factor, a.z() * factor};
}
constexpr NbgIntVector3D operator*(int factor, const NbgIntVector3D &a)
{
  return a * factor;
}
constexpr bool operator==(const NbgIntVector3D &a, const NbgIntVector3D &b)
{
  return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}
constexpr bool operator!=(const NbgIntVector3D &a, const NbgIntVector3D &b)
{
  return !(a == b);
}
/// Lexicographic.
constexpr bool operator<(const NbgIntVector3D &a, const NbgIntVector3D &b)
{
  if (a.x() != b.x())
    return a.x() < b.x();
  return a.y() != b.y() ? a.y() < b.y() : a.z() < b.z();
}

inline NbgIntVector3D &NbgIntVector3D::operator+=(const NbgIntVector3D &b)
{
  return *this = *this + b;
}
inline NbgIntVector3D &NbgIntVector3D::operator-=(const NbgIntVector3D &b)
{
  return *this = *this - b;
}
inline NbgIntVector3D &NbgIntVector3D::operator*=(int factor)
{
  return *this = *this * factor;
}

Q_DECLARE_TYPEINFO(NbgIntVector3D, Q_PRIMITIVE_TYPE);
