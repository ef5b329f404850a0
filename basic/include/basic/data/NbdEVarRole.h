#pragma once

#include "basic/base/NbbAEnum.h"

#include <QList>

/// Structural roles: what a variable is for the data file itself, whatever is computed with it.
class NbdEVarRole : public NbbAEnum
{
public:
  enum EValue { E_X, E_Y, E_Z, E_SN, E_IJK, E_INDEX, E_OBJECT_ID, E_S, E_S_FROM, E_S_TO };

  static const NbdEVarRole X;
  static const NbdEVarRole Y;
  static const NbdEVarRole Z;
  static const NbdEVarRole SN;         ///< sample number, from 1
  static const NbdEVarRole IJK;        ///< rank of a grid node
  static const NbdEVarRole INDEX;      ///< rank of a sample along its line
  static const NbdEVarRole OBJECT_ID;  ///< the line that a sample belongs to
  static const NbdEVarRole S;          ///< distance along the line
  static const NbdEVarRole S_FROM;     ///< start of a sample along its line
  static const NbdEVarRole S_TO;       ///< end of a sample along its line

  static QList<NbdEVarRole> getAll();

  /// The role (Nbd::Role) under which calculators bind such a variable.
  const QString &toCalculatorRole() const;

  EValue toEnum() const { return static_cast<EValue>(getValue()); }
  bool operator==(const NbdEVarRole &other) const { return getValue() == other.getValue(); }
  bool operator!=(const NbdEVarRole &other) const { return getValue() != other.getValue(); }
  bool operator<(const NbdEVarRole &other) const { return getValue() < other.getValue(); }

private:
  NbdEVarRole(const QString &label, EValue value, const char *key);
};
