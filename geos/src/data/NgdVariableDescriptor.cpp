#include "geos/data/NgdVariableDescriptor.h"

#include "basic/data/NbdVarTypeFlags.h"
#include "basic/error/NbeAssertion.h"

NgdVariableDescriptor::NgdVariableDescriptor()
    : _eVarType(NbdEVarType::fromUdVarType(Nbd::TYPE_FLOAT))
{
}

NgdVariableDescriptor::NgdVariableDescriptor(const QString &name) : NgdVariableDescriptor()
{
  _providerVarId = name;
  _details.setName(name);
  _indices = {NbdMacroIndex(1)};
  _indexNames = QStringList(name);
}

QString NgdVariableDescriptor::getName() const
{
  return _details.getName();
}

void NgdVariableDescriptor::setVariableType(Nbd::EVariableType type)
{
  _variableType = type;
  const bool hasStorage = type != Nbd::TYPE_RESERVED_64 && type != Nbd::TYPE_RESERVED_128;
  _eVarType = hasStorage ? NbdEVarType::fromUdVarType(type) : NbdEVarType();
}

void NgdVariableDescriptor::setIndices(const NbdMacroIndexInfo &info,
                                       const QList<NbdMacroIndex> &indices)
{
  if (!_isMacro)
    NBE_FAIL(QStringLiteral("not a macro."));
  info.checkConsistency(indices);

  _macroIndexInfo = info;
  _indices = indices;
  _indexNames.clear();
  for (const NbdMacroIndex &index : indices)
    _indexNames << index.toString(info);
}

int NgdVariableDescriptor::getNRealizationsPerLoop() const
{
  return _multiByPiece ? 1 : getNRealizations();
}

bool NgdVariableDescriptor::isNumeric() const
{
  return NbdVarTypeFlags::NUMERIC.testFlag(_eVarType);
}

bool NgdVariableDescriptor::isCategorical() const
{
  return _eVarType.isCategorical();
}

int NgdVariableDescriptor::getBitLength() const
{
  int nBits = 64;
  switch (_variableType) {
    case Nbd::TYPE_NONE:
      NBE_FAIL(QStringLiteral("Undefined type should not be encountered here."));
    case Nbd::TYPE_FLOAT:
    case Nbd::TYPE_INT32:
    case Nbd::TYPE_MULTI_FLOAT:
    case Nbd::TYPE_COLOR:
      nBits = 32;
      break;
    case Nbd::TYPE_BOOLEAN:
      nBits = 1;
      break;
    case Nbd::TYPE_ALPHA:
      nBits = 400;
      break;
    case Nbd::TYPE_RESERVED_64:
    case Nbd::TYPE_RESERVED_128:
      nBits = 0;
      break;
    case Nbd::TYPE_POINT:
      nBits = 192;
      break;
    case Nbd::TYPE_ENUM:
      nBits = 16;
      break;
    case Nbd::TYPE_DOUBLE:
    case Nbd::TYPE_INT64:
      break;
  }
  return _isMacro && !_multiByPiece ? nBits * qMax(_indices.size(), 1) : nBits;
}
