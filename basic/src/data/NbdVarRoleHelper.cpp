#include "basic/data/NbdVarRoleHelper.h"

#include "basic/data/NbdEVarRole.h"
#include "basic/unit/NbuEUnitClass.h"

const NbuEUnitClass &NbdVarRoleHelper::toUnitClass(const NbdEVarRole &role)
{
  switch (role.toEnum()) {
    case NbdEVarRole::E_X:
    case NbdEVarRole::E_Y:
      return NbuEUnitClass::COORDINATE;
    case NbdEVarRole::E_Z:
      return NbuEUnitClass::ELEVATION;
    case NbdEVarRole::E_S:
    case NbdEVarRole::E_S_FROM:
    case NbdEVarRole::E_S_TO:
      return NbuEUnitClass::LENGTH;
    default:
      return NbuEUnitClass::NONE;
  }
}
