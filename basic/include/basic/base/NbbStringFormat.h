#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbEFormat.h"
#include "basic/base/NbbGlobal.h"
#include "basic/data/Nbd.h"
#include "basic/unit/NbuUnitTransfo.h"

#include <QString>

/// How the values of a variable are written in reports: conversion to the display unit, format,
/// digits. Numbers are written in the C locale.
class NbbStringFormat : public NbbASerializable
{
public:
  /// FREE with 6 digits, no unit.
  NbbStringFormat();
  NbbStringFormat(const NbbEFormat &format, int digits);

  /// Format of the variance of what `format` writes: squared conversion (without its offset) and
  /// squared unit.
  static NbbStringFormat createForVariance(const NbbStringFormat &format);

  /// INTEGER for integers, categories and selections, FREE with 6 digits for floats and 8 for
  /// doubles.
  static NbbStringFormat createFromVarType(Nbd::EVariableType type);

  /// FREE with all 17 digits, for diagnostics.
  static NbbStringFormat getDebugFormat();

  /// `digits` are decimals (significant digits for FREE), between 0 and 17.
  void setFormat(const NbbEFormat &format, int digits);
  const NbbEFormat &getFormat() const { return NbbEFormat::fromValue(_format); }
  int getDigits() const { return _digits; }

  /// Conversion from the stored value to the display unit, and the symbol of that unit.
  void setDisplayUnit(const QString &symbol, const NbuUnitTransfo &transfo);
  const QString &getDisplayUnitSymbol() const { return _unitSymbol; }
  const NbuUnitTransfo &getDisplayTransfo() const { return _transfo; }

  /// Text of a value, without its unit; NbbGlobal::STR_NA when it is undefined.
  QString valueToString(double value) const;

  /// The same with a blank and the unit symbol behind it.
  QString valueToStringWithUnit(double value) const;

  bool operator==(const NbbStringFormat &other) const;
  bool operator!=(const NbbStringFormat &other) const { return !(*this == other); }

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

private:
  int _format;
  int _digits;
  QString _unitSymbol;
  NbuUnitTransfo _transfo;
};
