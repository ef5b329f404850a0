#pragma once

#include "basic/interval/NbiIntervalIntSmall.h"

/// A block of grid cells: one interval of indices per axis.
class NbiIntervalsIJK
{
public:
  /// The empty block.
  NbiIntervalsIJK() = default;
  NbiIntervalsIJK(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                  const NbiIntervalIntSmall &k)
      : _i(i), _j(j), _k(k)
  {
  }

  const NbiIntervalIntSmall &getI() const { return _i; }
  const NbiIntervalIntSmall &getJ() const { return _j; }
  const NbiIntervalIntSmall &getK() const { return _k; }
  void setI(const NbiIntervalIntSmall &i) { _i = i; }
  void setJ(const NbiIntervalIntSmall &j) { _j = j; }
  void setK(const NbiIntervalIntSmall &k) { _k = k; }

  bool isEmpty() const { return _i.isEmpty() || _j.isEmpty() || _k.isEmpty(); }
  bool isIncluded(int i, int j, int k) const
  {
    return _i.isIncluded(i) && _j.isIncluded(j) && _k.isIncluded(k);
  }

  /// The number of cells.
  qint64 getLength() const { return qint64(_i.getLength()) * _j.getLength() * _k.getLength(); }

  [[nodiscard]] NbiIntervalsIJK intersect(const NbiIntervalsIJK &other) const
  {
    return {_i.intersect(other._i), _j.intersect(other._j), _k.intersect(other._k)};
  }

  /// "[0, 9] x [0, 4] x [0, 0]".
  QString toString() const
  {
    return QStringLiteral("%1 x %2 x %3").arg(_i.toString(), _j.toString(), _k.toString());
  }

private:
  NbiIntervalIntSmall _i;
  NbiIntervalIntSmall _j;
  NbiIntervalIntSmall _k;
};

inline bool operator==(const NbiIntervalsIJK &a, const NbiIntervalsIJK &b)
{
  return a.getI() == b.getI() && a.getJ() == b.getJ() && a.getK() == b.getK();
}
inline bool operator!=(const NbiIntervalsIJK &a, const NbiIntervalsIJK &b)
{
  return !(a == b);
}
