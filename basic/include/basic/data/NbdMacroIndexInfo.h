#pragma once

#include "basic/data/NbdEMacroIndexType.h"

#include <QList>
#include <QString>

class NbdMacroIndex;
class QDataStream;

/// Describes the indices of a macro variable: their type and what they count ("Realization").
class NbdMacroIndexInfo
{
public:
  /// Integer indices without name.
  NbdMacroIndexInfo() = default;
  explicit NbdMacroIndexInfo(const NbdEMacroIndexType &type, const QString &name = QString())
      : _type(type), _name(name)
  {
  }

  const NbdEMacroIndexType &getType() const { return _type; }
  const QString &getName() const { return _name; }

  /// Whether the index is valid and of the type.
  bool isConsistent(const NbdMacroIndex &index) const;

  /// NbeProgrammingError when an index is not of the type or comes twice.
  void checkConsistency(const QList<NbdMacroIndex> &indices) const;

  /// Same type and same name.
  bool operator==(const NbdMacroIndexInfo &other) const
  {
    return _type == other._type && _name == other._name;
  }
  bool operator!=(const NbdMacroIndexInfo &other) const { return !(*this == other); }

private:
  NbdEMacroIndexType _type;
  QString _name;
};

/// Type (qint8) and name. An unknown type sets the stream's status to ReadCorruptData and leaves
/// the info unchanged.
QDataStream &operator<<(QDataStream &stream, const NbdMacroIndexInfo &info);
QDataStream &operator>>(QDataStream &stream, NbdMacroIndexInfo &info);
