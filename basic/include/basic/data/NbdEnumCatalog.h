#pragma once

#include "basic/base/NbbASerializable.h"

#include <QList>
#include <QMap>
#include <QString>

/// Categories of an enumerated variable: a code (16 bits) and a name each. Implicitly shared.
class NbdEnumCatalog : public NbbASerializable
{
public:
  bool isEmpty() const { return _names.isEmpty(); }
  int getNCategories() const { return _names.size(); }

  /// The codes, ascending.
  QList<qint16> getCodes() const { return _names.keys(); }
  bool hasCode(qint16 code) const { return _names.contains(code); }

  /// Name of a category; empty for an unknown code.
  QString getName(qint16 code) const { return _names.value(code); }

  /// Code of a category, I16_FFFF for an unknown name.
  qint16 getCode(const QString &name) const;

  /// Adds a category or renames it. NbeProgrammingError for the undefined code, an empty name or a
  /// name that another code has.
  void setCategory(qint16 code, const QString &name);

  /// Code of the category of that name, which is added behind the largest code (from 1) when it is
  /// missing. NbeUserError when no code is left.
  qint16 addCategory(const QString &name);

  void clear();

  bool operator==(const NbdEnumCatalog &other) const { return _names == other._names; }
  bool operator!=(const NbdEnumCatalog &other) const { return !(*this == other); }

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override { return true; }

private:
  QMap<qint16, QString> _names;
  QMap<QString, qint16> _codes;
};
