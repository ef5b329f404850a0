#include "basic/data/NbdEnumCatalog.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"

#include <QDataStream>
#include <QObject>

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned int CURRENT_VERSION = 210601;
constexpr int MAXIMUM_COUNT = 65535;
constexpr int MINIMUM_BYTES = 6;  // code and length of the name

}  // namespace

qint16 NbdEnumCatalog::getCode(const QString &name) const
{
  return _codes.value(name, NbbGlobal::I16_FFFF);
}

void NbdEnumCatalog::setCategory(qint16 code, const QString &name)
{
  if (code == NbbGlobal::I16_FFFF)
    NBE_FAIL(QStringLiteral("a category needs a defined code"));
  if (name.isEmpty())
    NBE_FAIL(QStringLiteral("a category needs a name"));
  if (_codes.value(name, code) != code)
    NBE_FAIL(QStringLiteral("two categories of name '%1'").arg(name));
  _codes.remove(_names.value(code));
  _names.insert(code, name);
  _codes.insert(name, code);
}

qint16 NbdEnumCatalog::addCategory(const QString &name)
{
  if (_codes.contains(name))
    return _codes.value(name);
  const int code = _names.isEmpty() ? 1 : std::max(0, int(_names.lastKey())) + 1;
  if (code > std::numeric_limits<qint16>::max())
    throw NbeUserError(QObject::tr("There are too many categories to add '%1'.").arg(name));
  setCategory(qint16(code), name);
  return qint16(code);
}

void NbdEnumCatalog::clear()
{
  _names.clear();
  _codes.clear();
}

QList<unsigned int> NbdEnumCatalog::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NbdEnumCatalog::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

void NbdEnumCatalog::_serialize(QDataStream &stream) const
{
  stream << quint32(_names.size());
  for (auto category = _names.begin(); category != _names.end(); ++category)
    stream << category.key() << category.value();
}

void NbdEnumCatalog::_unserialize(QDataStream &stream, unsigned int)
{
  quint32 count = 0;
  stream >> count;
  _checkCount(stream, count, MINIMUM_BYTES, MAXIMUM_COUNT);
  NbdEnumCatalog read;
  for (quint32 i = 0; i < count; ++i) {
    qint16 code = 0;
    QString name;
    stream >> code >> name;
    _checkStream(stream);
    if (code == NbbGlobal::I16_FFFF || name.isEmpty() || read.hasCode(code) ||
        read._codes.contains(name))
      _refuse(QObject::tr("bad category %1 '%2'").arg(code).arg(name));
    read.setCategory(code, name);
  }
  *this = read;
}
