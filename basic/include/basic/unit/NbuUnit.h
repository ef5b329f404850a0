#pragma once

#include "basic/unit/NbuEUnitClass.h"
#include "basic/unit/NbuUnitTransfo.h"

#include <QString>

/// A unit: its symbol, what it measures and its conversion to the reference unit of its class.
class NbuUnit
{
public:
  /// An invalid unit.
  NbuUnit();
  NbuUnit(const QString &symbol, const QString &name, const NbuEUnitClass &unitClass,
          const NbuUnitTransfo &toReference);

  bool isValid() const { return _toReference.isValid(); }
  const QString &getSymbol() const { return _symbol; }
  const QString &getName() const { return _name; }
  const NbuEUnitClass &getUnitClass() const { return NbuEUnitClass::fromValue(_unitClass); }
  const NbuUnitTransfo &getTransfoToReference() const { return _toReference; }

private:
  QString _symbol;
  QString _name;
  int _unitClass;
  NbuUnitTransfo _toReference;
};
