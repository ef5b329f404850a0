#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbStringFormat.h"
#include "basic/unit/NbuEUnitClass.h"

#include <QString>

/// Name of a variable and how its values are understood and shown: description, what they measure,
/// the unit in which they are stored, display unit and format.
class NbdVariableDetails : public NbbASerializable
{
public:
  NbdVariableDetails() = default;
  explicit NbdVariableDetails(const QString &name) : _name(name) {}

  const QString &getName() const { return _name; }
  void setName(const QString &name) { _name = name; }

  const QString &getDescription() const { return _description; }
  void setDescription(const QString &description) { _description = description; }

  const NbuEUnitClass &getUnitClass() const { return NbuEUnitClass::fromValue(_unitClass); }
  void setUnitClass(const NbuEUnitClass &unitClass) { _unitClass = unitClass.getValue(); }

  /// Symbol of the unit of the stored values; empty when it is not known.
  const QString &getStorageUnit() const { return _storageUnit; }
  void setStorageUnit(const QString &symbol) { _storageUnit = symbol; }

  const NbbStringFormat &getStringFormat() const { return _format; }
  void setStringFormat(const NbbStringFormat &format) { _format = format; }

  /// Conversion of stored values to the display unit, and the symbol of that unit. They belong to
  /// the format.
  const NbuUnitTransfo &getDisplayTransfo() const { return _format.getDisplayTransfo(); }
  const QString &getDisplayUnitSymbol() const { return _format.getDisplayUnitSymbol(); }
  void setDisplayUnit(const QString &symbol, const NbuUnitTransfo &transfo)
  {
    _format.setDisplayUnit(symbol, transfo);
  }

  bool operator==(const NbdVariableDetails &other) const;
  bool operator!=(const NbdVariableDetails &other) const { return !(*this == other); }

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

private:
  QString _name;
  QString _description;
  int _unitClass = NbuEUnitClass::E_NONE;
  QString _storageUnit;
  NbbStringFormat _format;
};
