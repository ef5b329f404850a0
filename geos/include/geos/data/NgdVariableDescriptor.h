#pragma once

#include "basic/data/Nbd.h"
#include "basic/data/NbdEVarType.h"
#include "basic/data/NbdEnumCatalog.h"
#include "basic/data/NbdMacroIndex.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableDetails.h"

#include <QList>
#include <QString>
#include <QStringList>

/// What a data set knows of one variable bound to a role: its identity in the data provider, value
/// type, access, macro indices and display details.
class NgdVariableDescriptor
{
public:
  NgdVariableDescriptor();

  /// A plain variable of that name: identifier and only index name are the name, with one integer
  /// macro index of value 1.
  explicit NgdVariableDescriptor(const QString &name);

  const QString &getProviderVarId() const { return _providerVarId; }
  void setProviderVarId(const QString &id) { _providerVarId = id; }

  /// The variable's name, from its details.
  QString getName() const;

  const QString &getContext() const { return _context; }
  void setContext(const QString &context) { _context = context; }

  Nbd::EVariableType getVariableType() const { return _variableType; }
  void setVariableType(Nbd::EVariableType type);
  const NbdEVarType &getEVarType() const { return _eVarType; }

  Nbd::EAccessType getAccessType() const { return _accessType; }
  void setAccessType(Nbd::EAccessType access) { _accessType = access; }

  /// A temporary is created for a run and deleted at its end.
  bool isTemporary() const { return _temporary; }
  void setTemporary(bool temporary) { _temporary = temporary; }

  const NbdVariableDetails &getDetails() const { return _details; }
  void setDetails(const NbdVariableDetails &details) { _details = details; }

  const NbdEnumCatalog &getCatalog() const { return _catalog; }
  void setCatalog(const NbdEnumCatalog &catalog) { _catalog = catalog; }

  bool isMacro() const { return _isMacro; }
  void setIsMacro(bool isMacro) { _isMacro = isMacro; }

  /// The macro is processed one realization at a time, in a loop over its indices.
  bool isMultiByPiece() const { return _multiByPiece; }
  void setMultiByPiece(bool byPiece) { _multiByPiece = byPiece; }

  const NbdMacroIndexInfo &getMacroIndexInfo() const { return _macroIndexInfo; }
  const QList<NbdMacroIndex> &getIndices() const { return _indices; }
  const QString &getIndexName(int rank) const { return _indexNames[rank]; }

  /// Fails ("not a macro.") on a plain variable, and when an index does not suit `info`.
  void setIndices(const NbdMacroIndexInfo &info, const QList<NbdMacroIndex> &indices);

  int getNRealizations() const { return _indices.size(); }

  /// 1 when processed by piece, else the number of indices.
  int getNRealizationsPerLoop() const;

  bool isNumeric() const;
  bool isCategorical() const;

  /// Bits that one sample of the variable takes in a buffer.
  int getBitLength() const;

private:
  QString _providerVarId;
  QString _context;
  Nbd::EVariableType _variableType = Nbd::TYPE_FLOAT;
  Nbd::EAccessType _accessType = Nbd::ACCESS_READ;
  bool _temporary = false;
  NbdVariableDetails _details;
  NbdEVarType _eVarType;
  NbdEnumCatalog _catalog;
  bool _isMacro = false;
  bool _multiByPiece = false;
  NbdMacroIndexInfo _macroIndexInfo;
  QList<NbdMacroIndex> _indices;
  QStringList _indexNames;
};
