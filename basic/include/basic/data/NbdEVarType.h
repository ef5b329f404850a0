#pragma once

#include "basic/base/NbbAEnum.h"
#include "basic/data/Nbd.h"

#include <QList>

/// Value type of a variable. Values are the codes of Nbd::EVariableType: one bit each, so that they
/// can be combined in NbdVarTypeFlags.
class NbdEVarType : public NbbAEnum
{
public:
  static const NbdEVarType NONE;
  static const NbdEVarType FLOAT_32;
  static const NbdEVarType FLOAT_64;
  static const NbdEVarType INT_32;
  static const NbdEVarType INT_64;
  static const NbdEVarType BOOLEAN;
  static const NbdEVarType ALPHA;
  static const NbdEVarType MULTI_FLOAT;
  static const NbdEVarType POINT;
  static const NbdEVarType ENUM;
  static const NbdEVarType COLOR;

  /// NONE.
  NbdEVarType();

  /// Whether the code is that of a type with storage or of NONE.
  static bool existsUdVarType(int type);
  /// NbeProgrammingError for a code that has no storage.
  static const NbdEVarType &fromUdVarType(Nbd::EVariableType type);
  Nbd::EVariableType toUdVarType() const { return static_cast<Nbd::EVariableType>(getValue()); }

  /// All types but NONE, in order of their codes.
  static QList<NbdEVarType> getAll();

  /// Floats, integers, booleans (0 or 1) and multi-realization floats.
  bool isNumeric() const;
  /// Enumerated.
  bool isCategorical() const;

  bool operator==(const NbdEVarType &other) const { return getValue() == other.getValue(); }
  bool operator!=(const NbdEVarType &other) const { return getValue() != other.getValue(); }

private:
  NbdEVarType(const QString &label, Nbd::EVariableType type, const char *key);
};
