#pragma once

#include "basic/base/NbbAEnum.h"

/// Kind of the indices of a macro variable.
class NbdEMacroIndexType : public NbbAEnum
{
public:
  enum EValue { E_INTEGER, E_STRING };

  static const NbdEMacroIndexType INTEGER;
  static const NbdEMacroIndexType STRING;

  /// INTEGER.
  NbdEMacroIndexType();

  EValue toEnum() const { return static_cast<EValue>(getValue()); }
  bool operator==(const NbdEMacroIndexType &other) const { return getValue() == other.getValue(); }
  bool operator!=(const NbdEMacroIndexType &other) const { return getValue() != other.getValue(); }

private:
  NbdEMacroIndexType(const QString &label, EValue value, const char *key);
};
