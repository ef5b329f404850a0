#pragma once

#include "basic/base/NbbAEnum.h"

/// How a number is written.
class NbbEFormat : public NbbAEnum
{
public:
  enum EValue { E_DECIMAL, E_FREE, E_INTEGER, E_SCIENTIFIC, E_SEMIFREE };

  static const NbbEFormat DECIMAL;     ///< a fixed number of decimals: 12.50
  static const NbbEFormat FREE;        ///< significant digits, exponent when needed: 1.25e+20
  static const NbbEFormat INTEGER;     ///< the nearest integer: 13
  static const NbbEFormat SCIENTIFIC;  ///< mantissa and exponent: 1.25e+01
  static const NbbEFormat SEMIFREE;    ///< decimals without trailing zeros: 12.5

  EValue toEnum() const { return static_cast<EValue>(getValue()); }
  bool operator==(const NbbEFormat &other) const { return getValue() == other.getValue(); }
  bool operator!=(const NbbEFormat &other) const { return getValue() != other.getValue(); }

  static bool existsValue(int value);

  /// NbeProgrammingError when the value or key is unknown.
  static const NbbEFormat &fromValue(int value);
  static const NbbEFormat &fromKey(const QString &key);

private:
  NbbEFormat(const QString &label, int value, const char *key);
};
