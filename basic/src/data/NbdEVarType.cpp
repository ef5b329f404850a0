#include "basic/data/NbdEVarType.h"

#include "basic/data/NbdVarTypeFlags.h"
#include "basic/error/NbeAssertion.h"

#include <QObject>

#include <algorithm>

const NbdEVarType NbdEVarType::NONE(QObject::tr("None"), Nbd::TYPE_NONE, "NONE");
const NbdEVarType NbdEVarType::FLOAT_32(QObject::tr("Float (32 bits)"), Nbd::TYPE_FLOAT,
                                        "FLOAT_32");
const NbdEVarType NbdEVarType::FLOAT_64(QObject::tr("Float (64 bits)"), Nbd::TYPE_DOUBLE,
                                        "FLOAT_64");
const NbdEVarType NbdEVarType::INT_32(QObject::tr("Integer (32 bits)"), Nbd::TYPE_INT32, "INT_32");
const NbdEVarType NbdEVarType::INT_64(QObject::tr("Integer (64 bits)"), Nbd::TYPE_INT64, "INT_64");
const NbdEVarType NbdEVarType::BOOLEAN(QObject::tr("Selection"), Nbd::TYPE_BOOLEAN, "BOOLEAN");
const NbdEVarType NbdEVarType::ALPHA(QObject::tr("Text"), Nbd::TYPE_ALPHA, "ALPHA");
const NbdEVarType NbdEVarType::MULTI_FLOAT(QObject::tr("Multi-realization float"),
                                           Nbd::TYPE_MULTI_FLOAT, "MULTI_FLOAT");
const NbdEVarType NbdEVarType::POINT(QObject::tr("Point"), Nbd::TYPE_POINT, "POINT");
const NbdEVarType NbdEVarType::ENUM(QObject::tr("Category"), Nbd::TYPE_ENUM, "ENUM");
const NbdEVarType NbdEVarType::COLOR(QObject::tr("Colour"), Nbd::TYPE_COLOR, "COLOR");

namespace {

constexpr int NUMERIC_MASK = Nbd::TYPE_FLOAT | Nbd::TYPE_DOUBLE | Nbd::TYPE_INT32 |
                             Nbd::TYPE_INT64 | Nbd::TYPE_BOOLEAN | Nbd::TYPE_MULTI_FLOAT;
constexpr int ANY_MASK =
    NUMERIC_MASK | Nbd::TYPE_ALPHA | Nbd::TYPE_POINT | Nbd::TYPE_ENUM | Nbd::TYPE_COLOR;

const NbdEVarType *const ALL[] = {
    &NbdEVarType::FLOAT_32, &NbdEVarType::FLOAT_64, &NbdEVarType::INT_32,      &NbdEVarType::INT_64,
    &NbdEVarType::BOOLEAN,  &NbdEVarType::ALPHA,    &NbdEVarType::MULTI_FLOAT, &NbdEVarType::POINT,
    &NbdEVarType::ENUM,     &NbdEVarType::COLOR};

}  // namespace

const NbdVarTypeFlags NbdVarTypeFlags::ANY = NbbAFlags<NbdEVarType>(ANY_MASK);
const NbdVarTypeFlags NbdVarTypeFlags::NUMERIC = NbbAFlags<NbdEVarType>(NUMERIC_MASK);

NbdEVarType::NbdEVarType() : NbdEVarType(NONE) {}

NbdEVarType::NbdEVarType(const QString &label, Nbd::EVariableType type, const char *key)
    : NbbAEnum(label, type, key)
{
}

bool NbdEVarType::existsUdVarType(int type)
{
  return type == Nbd::TYPE_NONE ||
         std::any_of(std::begin(ALL), std::end(ALL),
                     [type](const NbdEVarType *item) { return item->getValue() == type; });
}

const NbdEVarType &NbdEVarType::fromUdVarType(Nbd::EVariableType type)
{
  for (const NbdEVarType *item : ALL) {
    if (item->getValue() == type)
      return *item;
  }
  if (type != Nbd::TYPE_NONE)
    NBE_FAIL(QStringLiteral("no storage for variable type %1").arg(type));
  return NONE;
}

QList<NbdEVarType> NbdEVarType::getAll()
{
  QList<NbdEVarType> result;
  for (const NbdEVarType *item : ALL)
    result << *item;
  return result;
}

bool NbdEVarType::isNumeric() const
{
  return (getValue() & NUMERIC_MASK) != 0;
}

bool NbdEVarType::isCategorical() const
{
  return getValue() == Nbd::TYPE_ENUM;
}
