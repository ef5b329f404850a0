#include "basic/base/NbbEFormat.h"

#include "basic/error/NbeAssertion.h"

#include <QObject>

const NbbEFormat NbbEFormat::DECIMAL(QObject::tr("Decimal"), E_DECIMAL, "DECIMAL");
const NbbEFormat NbbEFormat::FREE(QObject::tr("Free"), E_FREE, "FREE");
const NbbEFormat NbbEFormat::INTEGER(QObject::tr("Integer"), E_INTEGER, "INTEGER");
const NbbEFormat NbbEFormat::SCIENTIFIC(QObject::tr("Scientific"), E_SCIENTIFIC, "SCIENTIFIC");
const NbbEFormat NbbEFormat::SEMIFREE(QObject::tr("Semi-free"), E_SEMIFREE, "SEMIFREE");

namespace {

const NbbEFormat *const ALL[] = {&NbbEFormat::DECIMAL, &NbbEFormat::FREE, &NbbEFormat::INTEGER,
                                 &NbbEFormat::SCIENTIFIC, &NbbEFormat::SEMIFREE};

}

NbbEFormat::NbbEFormat(const QString &label, int value, const char *key)
    : NbbAEnum(label, value, key)
{
}

bool NbbEFormat::existsValue(int value)
{
  for (const NbbEFormat *item : ALL) {
    if (item->getValue() == value)
      return true;
  }
  return false;
}

const NbbEFormat &NbbEFormat::fromValue(int value)
{
  for (const NbbEFormat *item : ALL) {
    if (item->getValue() == value)
      return *item;
  }
  NBE_FAIL(QStringLiteral("%1 is not valid").arg(value));
}

const NbbEFormat &NbbEFormat::fromKey(const QString &key)
{
  for (const NbbEFormat *item : ALL) {
    if (item->getKeyString() == key)
      return *item;
  }
  NBE_FAIL(QStringLiteral("%1 is not valid").arg(key));
}
