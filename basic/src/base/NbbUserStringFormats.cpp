#include "basic/base/NbbUserStringFormats.h"

#include "basic/unit/NbuEUnitClass.h"

#include <QMap>
#include <QMutex>
#include <QMutexLocker>

namespace {

struct Choices
{
  QMutex mutex;
  QMap<int, NbbStringFormat> formats;  // by value of the unit class
};

Choices &choices()
{
  static Choices theChoices;
  return theChoices;
}

/// Lengths are written to the thousandth: coordinates have more digits than the free format shows.
NbbStringFormat formatWithoutChoice(int unitClass)
{
  switch (unitClass) {
    case NbuEUnitClass::E_COORDINATE:
    case NbuEUnitClass::E_ELEVATION:
    case NbuEUnitClass::E_LENGTH:
      return NbbStringFormat(NbbEFormat::SEMIFREE, 3);
    default:
      return NbbStringFormat();
  }
}

}  // namespace

NbuUnitTransfo NbbUserStringFormats::getDisplayTransfo(const NbuEUnitClass &unitClass)
{
  return getStringFormat(unitClass).getDisplayTransfo();
}

NbbStringFormat NbbUserStringFormats::getStringFormat(const NbuEUnitClass &unitClass)
{
  Choices &all = choices();
  QMutexLocker lock(&all.mutex);
  const auto found = all.formats.constFind(unitClass.getValue());
  return found == all.formats.constEnd() ? formatWithoutChoice(unitClass.getValue()) : *found;
}

void NbbUserStringFormats::setStringFormat(const NbuEUnitClass &unitClass,
                                           const NbbStringFormat &format)
{
  Choices &all = choices();
  QMutexLocker lock(&all.mutex);
  all.formats.insert(unitClass.getValue(), format);
}

void NbbUserStringFormats::reset()
{
  Choices &all = choices();
  QMutexLocker lock(&all.mutex);
  all.formats.clear();
}
