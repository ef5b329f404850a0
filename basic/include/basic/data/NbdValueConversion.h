#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdColor.h"
#include "basic/geom/NbgVector3D.h"

#include <QString>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

/// What the variables know of one value of their storage type T: double, float, int, qint64, qint16
/// (codes of categories), unsigned char (selections, 0 or 1), QString, NbgVector3D or NbdColor.
template <class T>
struct NbdValueTraits
{
  static constexpr bool isNumeric = std::is_arithmetic_v<T>;

  /// What stands for a missing value. A selection has none: false takes its place.
  static T undefined()
  {
    if constexpr (std::is_same_v<T, double>)
      return NbbGlobal::D_FFFF;
    else if constexpr (std::is_same_v<T, float>)
      return NbbGlobal::F_FFFF;
    else if constexpr (std::is_same_v<T, NbgVector3D>)
      return NbgVector3D::Undefined;
    else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
      return std::numeric_limits<T>::min();
    else
      return T();
  }

  /// The value of new samples: undefined, and true in a selection.
  static T initial()
  {
    if constexpr (std::is_same_v<T, unsigned char>)
      return 1;
    else
      return undefined();
  }

  static bool isDefined(const T &value)
  {
    if constexpr (std::is_same_v<T, unsigned char>)
      return true;
    else if constexpr (std::is_arithmetic_v<T>)
      return NbbGlobal::isDefined(value);
    else if constexpr (std::is_same_v<T, NbgVector3D>)
      return value.isDefined();
    else if constexpr (std::is_same_v<T, QString>)
      return !value.isEmpty();
    else
      return value != T();
  }
};

/// Texts of values, shortest that read back the same, empty when undefined; and the number that a
/// text stands for in the C locale, undefined when it is none ("true" counts as 1).
QString nbdToText(double value);
QString nbdToText(float value);
QString nbdToText(qint64 value);
double nbdTextToDouble(const QString &text);
qint64 nbdTextToInt64(const QString &text);

/// Whether values of one storage type can become values of another: numbers and texts among each
/// other, points and colours only as they are.
template <class To, class From>
inline constexpr bool nbdIsConvertible =
    std::is_same_v<To, From> || ((NbdValueTraits<To>::isNumeric ||
                                  std::is_same_v<To, QString>)&&(NbdValueTraits<From>::isNumeric ||
                                                                 std::is_same_v<From, QString>));

/// One value in another storage type.
///
/// Undefined values become the target's undefined; so do numbers out of the target's range. Floats
/// become integers by rounding half away from zero. In a selection undefined and 0 become false,
/// all else true.
template <class To, class From>
inline To nbdConvert(const From &value)
{
  static_assert(nbdIsConvertible<To, From>, "no conversion between these types");
  using Target = NbdValueTraits<To>;
  if constexpr (std::is_same_v<To, From>) {
    return value;
  } else if constexpr (std::is_same_v<From, QString>) {
    if constexpr (std::is_integral_v<To> && !std::is_same_v<To, unsigned char>)
      return nbdConvert<To>(nbdTextToInt64(value));
    else
      return nbdConvert<To>(nbdTextToDouble(value));
  } else if constexpr (std::is_same_v<To, QString>) {
    if constexpr (std::is_floating_point_v<From>)
      return nbdToText(value);
    else
      return nbdToText(nbdConvert<qint64>(value));
  } else if constexpr (std::is_same_v<To, unsigned char>) {
    return NbdValueTraits<From>::isDefined(value) & (value != From(0)) ? 1 : 0;
  } else if constexpr (std::is_same_v<From, unsigned char>) {
    return To(value != 0);
  } else if constexpr (std::is_same_v<To, float>) {
    const float narrowed = float(value);
    return NbdValueTraits<From>::isDefined(value) & NbbGlobal::isDefined(narrowed)
               ? narrowed
               : NbbGlobal::F_FFFF;
  } else if constexpr (std::is_same_v<To, double>) {
    return NbdValueTraits<From>::isDefined(value) ? double(value) : NbbGlobal::D_FFFF;
  } else if constexpr (std::is_floating_point_v<From>) {
    // The limits are powers of two: exact as floating-point numbers. NaN fails both comparisons.
    constexpr From limit = -From(std::numeric_limits<To>::min());
    const From rounded = std::round(value);
    return rounded > -limit && rounded < limit ? To(rounded) : Target::undefined();
  } else if constexpr (sizeof(To) > sizeof(From)) {
    return NbdValueTraits<From>::isDefined(value) ? To(value) : Target::undefined();
  } else {
    return value > std::numeric_limits<To>::min() && value <= std::numeric_limits<To>::max()
               ? To(value)
               : Target::undefined();
  }
}

/// out[i] = nbdConvert<To>(in[i]). The arrays do not overlap.
template <class To, class From>
inline void nbdConvertArray(const From *in, qint64 n, To *out)
{
  if constexpr (std::is_same_v<To, From>) {
    std::copy(in, in + n, out);
  } else {
    for (qint64 i = 0; i < n; ++i)
      out[i] = nbdConvert<To>(in[i]);
  }
}
