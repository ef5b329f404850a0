#include "basic/data/NbdVariableDetails.h"

#include <QDataStream>
#include <QObject>

namespace {

constexpr unsigned int CURRENT_VERSION = 210601;

}

bool NbdVariableDetails::operator==(const NbdVariableDetails &other) const
{
  return _name == other._name && _description == other._description &&
         _unitClass == other._unitClass && _storageUnit == other._storageUnit &&
         _format == other._format;
}

QList<unsigned int> NbdVariableDetails::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NbdVariableDetails::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

void NbdVariableDetails::_serialize(QDataStream &stream) const
{
  stream << _name << _description << qint32(_unitClass) << _storageUnit;
  _format.serialize(stream);
}

void NbdVariableDetails::_unserialize(QDataStream &stream, unsigned int)
{
  NbdVariableDetails read;
  qint32 unitClass = 0;
  stream >> read._name >> read._description >> unitClass >> read._storageUnit;
  _checkStream(stream);
  if (!NbuEUnitClass::existsValue(unitClass))
    _refuse(QObject::tr("unknown class of units %1").arg(unitClass));
  read._unitClass = unitClass;
  read._format.unserialize(stream);
  *this = read;
}
