#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbGlobal.h"

/// An interval of real values, with a flag per end that tells whether the bound belongs to it.
///
/// An undefined bound is no bound; an undefined value is in no interval. The default has neither
/// bound.
class NbiIntervalData : public NbbASerializable
{
public:
  /// The bound that is none.
  static constexpr double Infinity = NbbGlobal::D_FFFF;

  NbiIntervalData() = default;
  NbiIntervalData(double lower, double upper, bool isLowerIncluded = true,
                  bool isUpperIncluded = true);

  /// All defined values.
  static NbiIntervalData Infinite() { return NbiIntervalData(); }

  void setBounds(double lower, double upper, bool isLowerIncluded = true,
                 bool isUpperIncluded = true);

  /// Infinity when there is no bound.
  double getLower() const { return _lower; }
  double getUpper() const { return _upper; }
  bool hasLower() const { return NbbGlobal::isDefined(_lower); }
  bool hasUpper() const { return NbbGlobal::isDefined(_upper); }
  bool isLowerIncluded() const { return _isLowerIncluded; }
  bool isUpperIncluded() const { return _isUpperIncluded; }

  /// Undefined unless both bounds are given.
  double getCenter() const;
  double getLength() const;

  /// Neither bound.
  bool isInfinite() const { return !hasLower() && !hasUpper(); }

  /// No value can be inside.
  bool isEmpty() const;

  bool isIncluded(double value) const
  {
    return NbbGlobal::isDefined(value) && !_isBelow(value) && !_isAbove(value);
  }

  /// The value of the interval that is nearest to `value`: a bound, or its neighbor inside when the
  /// bound is excluded. An undefined value, and any value when the interval is empty, gives the
  /// undefined value.
  double fit(double value) const;

  /// "[0, 1[", with "-inf" and "+inf" for absent bounds.
  QString toString() const;

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override;

private:
  bool _isBelow(double value) const
  {
    return hasLower() && (_isLowerIncluded ? value < _lower : value <= _lower);
  }
  bool _isAbove(double value) const
  {
    return hasUpper() && (_isUpperIncluded ? value > _upper : value >= _upper);
  }

  double _lower = Infinity;
  double _upper = Infinity;
  bool _isLowerIncluded = true;
  bool _isUpperIncluded = true;
};

bool operator==(const NbiIntervalData &a, const NbiIntervalData &b);
inline bool operator!=(const NbiIntervalData &a, const NbiIntervalData &b)
{
  return !(a == b);
}
