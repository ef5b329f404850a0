#include "basic/data/NbdAVariable.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"

#include <QDataStream>
#include <QObject>

#include <limits>

namespace {

constexpr unsigned int CURRENT_VERSION = 210601;

}

NbdAVariable::~NbdAVariable() = default;

QString NbdAVariable::getText(int position) const
{
  return NbbGlobal::toString(getVariant(position));
}

void NbdAVariable::appendValue(const QVariant &value)
{
  const int position = getNValues();
  resizeAndFill(position + 1);
  setVariant(position, value);
}

void NbdAVariable::copySamplesFrom(const NbdAVariable &other, int otherFirst, int first, int n)
{
  copyValuesFrom(other, otherFirst, first, n);
}

void NbdAVariable::shrink(int n)
{
  _checkRange(n, 0);
  resizeAndFill(n);
}

void NbdAVariable::setMacroIndex(const NbdMacroIndexInfo &info, const NbdMacroIndex &index)
{
  if (isMultiRealizations())
    NBE_FAIL(QStringLiteral("a multi-realization variable has one macro index per realization"));
  if (index.isValid() && !info.isConsistent(index))
    NBE_FAIL(QStringLiteral("macro index '%1' is not of type %2")
                 .arg(index.toString(), info.getType().getKeyString()));
  _macroIndexInfo = info;
  _macroIndex = index;
}

QList<NbdMacroIndex> NbdAVariable::getRealizationIndices() const
{
  return {_macroIndex};
}

NbdMacroIndex NbdAVariable::getCurrentRealizationIndex() const
{
  return getRealizationIndices().value(getCurrentRealizationRank());
}

void NbdAVariable::setCurrentRealizationIndex(const NbdMacroIndex &index)
{
  const int rank = getRealizationIndices().indexOf(index);
  if (rank < 0)
    NBE_FAIL(
        QStringLiteral("no realization '%1' of variable '%2'").arg(index.toString(), getName()));
  setCurrentRealizationRank(rank);
}

void NbdAVariable::setCurrentRealizationRank(int rank)
{
  if (rank != 0)
    NBE_FAIL(QStringLiteral("no realization of rank %1").arg(rank));
}

void NbdAVariable::_checkRange(int first, int count) const
{
  if (first < 0 || count < 0 || first > getNValues() - count)
    NBE_FAIL(QStringLiteral("%1 values from position %2 on are not within the %3 values of '%4'")
                 .arg(count)
                 .arg(first)
                 .arg(getNValues())
                 .arg(getName()));
}

void NbdAVariable::_checkSize(qint64 size)
{
  if (size < 0)
    NBE_FAIL(QStringLiteral("%1 is no number of values").arg(size));
  if (size > std::numeric_limits<int>::max())
    throw NbeMemoryError(QObject::tr("%1 values are too many for one variable.").arg(size));
}

void NbdAVariable::_refuseConversion(const NbdAVariable &from, const NbdAVariable &to)
{
  NBE_FAIL(QStringLiteral("values of '%1' (type %2) cannot become values of '%3' (type %4)")
               .arg(from.getName())
               .arg(from.getVariableType())
               .arg(to.getName())
               .arg(to.getVariableType()));
}

QList<unsigned int> NbdAVariable::_serializedVersions() const
{
  return {CURRENT_VERSION};
}

unsigned int NbdAVariable::_currentSerializedVersion() const
{
  return CURRENT_VERSION;
}

void NbdAVariable::_writeHeader(QDataStream &stream) const
{
  _details.serialize(stream);
  stream << _macroIndexInfo << _macroIndex;
}

NbdAVariable::Header NbdAVariable::_readHeader(QDataStream &stream) const
{
  Header header;
  header.details.unserialize(stream);
  stream >> header.macroIndexInfo >> header.macroIndex;
  _checkStream(stream);
  if (header.macroIndex.isValid() && !header.macroIndexInfo.isConsistent(header.macroIndex))
    _refuse(QObject::tr("bad macro index"));
  return header;
}

void NbdAVariable::_setHeader(const Header &header)
{
  _details = header.details;
  _macroIndexInfo = header.macroIndexInfo;
  _macroIndex = header.macroIndex;
}
