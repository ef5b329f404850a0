#include "basic/data/NbdVariableDetailsHelper.h"

#include "basic/base/NbbUserStringFormats.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/unit/Nbu.h"

namespace {

QString productSymbol(const QString &first, const QString &second)
{
  if (first.isEmpty() || second.isEmpty())
    return first + second;
  return first + QStringLiteral("·") + second;
}

/// Symbol of the square of a unit, as formats of variances write it.
QString squaredSymbol(const QString &symbol)
{
  NbbStringFormat format;
  format.setDisplayUnit(symbol, NbuUnitTransfo::identity());
  return NbbStringFormat::createForVariance(format).getDisplayUnitSymbol();
}

NbbStringFormat formatForProduct(const NbbStringFormat &first, const NbbStringFormat &second)
{
  const NbuUnitTransfo &firstTransfo = first.getDisplayTransfo();
  const NbuUnitTransfo &secondTransfo = second.getDisplayTransfo();
  const bool isSame = first.getDisplayUnitSymbol() == second.getDisplayUnitSymbol() &&
                      firstTransfo.getScale() == secondTransfo.getScale();
  NbbStringFormat result = NbbStringFormat::createForVariance(first);
  if (!isSame)
    result.setDisplayUnit(
        productSymbol(first.getDisplayUnitSymbol(), second.getDisplayUnitSymbol()),
        NbuUnitTransfo(firstTransfo.getScale() * secondTransfo.getScale()));
  return result;
}

}  // namespace

NbdVariableDetails NbdVariableDetailsHelper::createDetails(const QString &name,
                                                           const NbuEUnitClass &unitClass)
{
  NbdVariableDetails details(name);
  details.setUnitClass(unitClass);
  details.setStringFormat(NbbUserStringFormats::getStringFormat(unitClass));
  return details;
}

NbdVariableDetails NbdVariableDetailsHelper::createDetails(const QString &name,
                                                           const NbdVariableDetails &model)
{
  NbdVariableDetails details(model);
  details.setName(name);
  return details;
}

NbdVariableDetails NbdVariableDetailsHelper::createDetails(const QString &name,
                                                           Nbd::EVariableType type)
{
  NbdVariableDetails details(name);
  details.setStringFormat(NbbStringFormat::createFromVarType(type));
  return details;
}

NbdVariableDetails NbdVariableDetailsHelper::createDetailsForLog(const QString &name,
                                                                 const NbdVariableDetails &model)
{
  NbdVariableDetails details(name);
  details.setDescription(model.getDescription());
  return details;
}

NbdVariableDetails NbdVariableDetailsHelper::createDetailsForProduct(
    const QString &name, const NbdVariableDetails &first, const NbdVariableDetails &second)
{
  NbdVariableDetails details(name);
  const QString &unit = first.getStorageUnit();
  const bool isSquare = unit == second.getStorageUnit();
  details.setStorageUnit(isSquare ? squaredSymbol(unit)
                                  : productSymbol(unit, second.getStorageUnit()));
  details.setStringFormat(formatForProduct(first.getStringFormat(), second.getStringFormat()));
  return details;
}

NbdVariableDetails NbdVariableDetailsHelper::createGaussianDetails(const QString &name)
{
  return createDetails(name, NbuEUnitClass::NONE);
}

NbdVariableDetails NbdVariableDetailsHelper::createMacroDetails(const QString &name,
                                                                const NbdVariableDetails &model)
{
  return createDetails(name, model);
}

NbdVariableDetails NbdVariableDetailsHelper::createPercentDetails(const QString &name)
{
  NbdVariableDetails details(name);
  details.setUnitClass(NbuEUnitClass::PERCENTAGE);
  details.setStorageUnit(Nbu::PER_RAW);
  NbbStringFormat format = NbbUserStringFormats::getStringFormat(NbuEUnitClass::PERCENTAGE);
  if (format.getDisplayUnitSymbol().isEmpty())
    format.setDisplayUnit(QStringLiteral("%"), NbuUnitTransfo(100.));
  details.setStringFormat(format);
  return details;
}

NbdVariableDetails NbdVariableDetailsHelper::createSelectionDetails(const QString &name)
{
  return createDetails(name, Nbd::TYPE_BOOLEAN);
}
