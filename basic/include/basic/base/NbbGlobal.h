#pragma once

#include <QString>
#include <QVariant>

#include <cstdint>
#include <limits>

/// Constants of the libraries (undefined values, bounds) and small conversions.
class NbbGlobal
{
public:
  /// The undefined double: 2^100. F_FFFF is the same value, so converting either way is exact.
  static constexpr double D_FFFF = 0x1p100;
  static constexpr float F_FFFF = 0x1p100f;

  /// Larger (smaller) than any defined value, finite in float; sums and midpoints cannot overflow.
  static constexpr double D_BIG_POSITIVE = 0x1p110;
  static constexpr double D_BIG_NEGATIVE = -0x1p110;
  static constexpr float F_BIG_POSITIVE = 0x1p110f;
  static constexpr float F_BIG_NEGATIVE = -0x1p110f;

  /// Bounds of Gaussian values.
  static constexpr double D_GAUSSIAN_MINIMUM = -10.;
  static constexpr double D_GAUSSIAN_MAXIMUM = 10.;
  static constexpr double D_BIG_GAUSSIAN_NEGATIVE = -20.;
  static constexpr double D_BIG_GAUSSIAN_POSITIVE = 20.;

  static constexpr double D_QTM_INTEG_LAG = 0.01;

  /// Undefined integers: the smallest value of the type (the largest of the unsigned one).
  static constexpr qint16 I16_FFFF = std::numeric_limits<qint16>::min();
  static constexpr qint32 I32_FFFF = std::numeric_limits<qint32>::min();
  static constexpr qint64 I64_FFFF = std::numeric_limits<qint64>::min();
  static constexpr quint64 UI64_FFFF = std::numeric_limits<quint64>::max();

  /// First word of every serialized object.
  static constexpr quint32 UI32_MAGIC = 0x4F52564E;

  /// Text printed for a missing value.
  static const QString STR_NA;

  /// A value that is not undefined: below 1e30 and not NaN. -infinity is undefined too.
  static constexpr bool isDefined(double value)
  {
    return value < 1e30 && value >= std::numeric_limits<double>::lowest();
  }
  static constexpr bool isDefined(float value)
  {
    return value < 1e30f && value >= std::numeric_limits<float>::lowest();
  }
  static constexpr bool isDefined(qint16 value) { return value != I16_FFFF; }
  static constexpr bool isDefined(qint32 value) { return value != I32_FFFF; }
  static constexpr bool isDefined(qint64 value) { return value != I64_FFFF; }

  /// defined[i] = isDefined(values[i]); returns how many are.
  static qint64 findDefined(qint64 n, const double *values, unsigned char *defined);

  /// The value of a variant, undefined or invalid giving false and leaving `value` unchanged.
  static bool convertVariant(const QVariant &variant, double &value);
  static bool convertVariant(const QVariant &variant, int &value);
  static bool convertVariant(const QVariant &variant, bool &value);

  /// Text of a variant in the C locale; STR_NA for an invalid or undefined one.
  static QString toString(const QVariant &variant);

  /// Readable class name from a type name (std::type_info::name()).
  static QString demangle(const char *typeName);
};
