#include "basic/unit/NbuUnit.h"

NbuUnit::NbuUnit() : _unitClass(NbuEUnitClass::E_NONE), _toReference(NbuUnitTransfo::invalid()) {}

NbuUnit::NbuUnit(const QString &symbol, const QString &name, const NbuEUnitClass &unitClass,
                 const NbuUnitTransfo &toReference)
    : _symbol(symbol), _name(name), _unitClass(unitClass.getValue()), _toReference(toReference)
{
}
