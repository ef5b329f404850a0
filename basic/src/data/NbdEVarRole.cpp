#include "basic/data/NbdEVarRole.h"

#include "basic/data/Nbd.h"

#include <QObject>

const NbdEVarRole NbdEVarRole::X(QObject::tr("X coordinate"), E_X, "X");
const NbdEVarRole NbdEVarRole::Y(QObject::tr("Y coordinate"), E_Y, "Y");
const NbdEVarRole NbdEVarRole::Z(QObject::tr("Z coordinate"), E_Z, "Z");
const NbdEVarRole NbdEVarRole::SN(QObject::tr("Sample number"), E_SN, "SN");
const NbdEVarRole NbdEVarRole::IJK(QObject::tr("Grid node"), E_IJK, "IJK");
const NbdEVarRole NbdEVarRole::INDEX(QObject::tr("Rank in line"), E_INDEX, "INDEX");
const NbdEVarRole NbdEVarRole::OBJECT_ID(QObject::tr("Line"), E_OBJECT_ID, "OBJECT_ID");
const NbdEVarRole NbdEVarRole::S(QObject::tr("Distance along line"), E_S, "S");
const NbdEVarRole NbdEVarRole::S_FROM(QObject::tr("From"), E_S_FROM, "S_FROM");
const NbdEVarRole NbdEVarRole::S_TO(QObject::tr("To"), E_S_TO, "S_TO");

NbdEVarRole::NbdEVarRole(const QString &label, EValue value, const char *key)
    : NbbAEnum(label, value, key)
{
}

QList<NbdEVarRole> NbdEVarRole::getAll()
{
  return {X, Y, Z, SN, IJK, INDEX, OBJECT_ID, S, S_FROM, S_TO};
}

const QString &NbdEVarRole::toCalculatorRole() const
{
  switch (toEnum()) {
    case E_X:
      return Nbd::Role::X;
    case E_Y:
      return Nbd::Role::Y;
    case E_Z:
      return Nbd::Role::Z;
    case E_SN:
      return Nbd::Role::SN;
    case E_IJK:
      return Nbd::Role::IJK;
    case E_INDEX:
      return Nbd::Role::RANK;
    case E_OBJECT_ID:
      return Nbd::Role::OBJECT_ID;
    case E_S:
      return Nbd::Role::LINE_S;
    case E_S_FROM:
      return Nbd::Role::LINE_S_FROM;
    case E_S_TO:
      break;
  }
  return Nbd::Role::LINE_S_TO;
}
