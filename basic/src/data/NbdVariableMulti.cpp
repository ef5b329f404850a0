#include "basic/data/NbdVariableMulti.h"

#include "basic/data/NbdIVariableMutator.h"
#include "basic/data/NbdIVariableVisitor.h"
#include "basic/error/NbeAssertion.h"
#include "data/private/NbdColumnOperations.h"
#include "data/private/NbdValueCopier.h"

#include <QObject>
#include <QSet>

#include <limits>

namespace {

constexpr int MAXIMUM_REALIZATIONS = 1000000;
constexpr int MINIMUM_INDEX_BYTES = 9;

}  // namespace

NbdVariableMulti::NbdVariableMulti(const NbdVariableDetails &details) : NbdAVariableNumeric(details)
{
}

NbdVariableMulti::NbdVariableMulti(const NbdVariableDetails &details,
                                   const QList<NbdMacroIndex> &indices,
                                   const NbdMacroIndexInfo &info)
    : NbdAVariableNumeric(details), _indices(indices), _columns(indices.size())
{
  info.checkConsistency(indices);
  _setMacroIndexInfo(info);
}

Nbd::EVariableType NbdVariableMulti::getVariableType() const
{
  return Nbd::TYPE_MULTI_FLOAT;
}

std::unique_ptr<NbdAVariable> NbdVariableMulti::clone() const
{
  return std::make_unique<NbdVariableMulti>(*this);
}

void NbdVariableMulti::acceptVisitor(NbdIVariableVisitor &visitor) const
{
  visitor.visit(*this);
}

void NbdVariableMulti::acceptMutator(NbdIVariableMutator &mutator)
{
  mutator.mutate(*this);
}

void NbdVariableMulti::setCurrentRealizationRank(int rank)
{
  if (rank < 0 || rank >= getNRealizations())
    NBE_FAIL(QStringLiteral("no realization of rank %1").arg(rank));
  _current = rank;
}

void NbdVariableMulti::setNRealizations(int n)
{
  _checkSize(n);
  _indices.clear();
  for (int index = 1; index <= n; ++index)
    _indices << NbdMacroIndex(index);
  _setMacroIndexInfo(NbdMacroIndexInfo(NbdEMacroIndexType::INTEGER, getMacroIndexInfo().getName()));
  const std::vector<float> undefined(_nValues, NbbGlobal::F_FFFF);
  _columns.resize(n, NbdSharedArray<float>(undefined));
  _current = std::max(0, std::min(_current, n - 1));
}

double NbdVariableMulti::getRealizationValue(int rank, int position) const
{
  return nbdConvert<double>(getArrayConst(rank)[position]);
}

void NbdVariableMulti::setRealizationValue(int rank, int position, double value)
{
  getArray(rank)[position] = nbdConvert<float>(value);
}

QVector<double> NbdVariableMulti::getAllValues(int position) const
{
  QVector<double> values(getNRealizations());
  for (int rank = 0; rank < values.size(); ++rank)
    values[rank] = getRealizationValue(rank, position);
  return values;
}

void NbdVariableMulti::setAllValues(int position, const QVector<double> &values)
{
  if (values.size() != getNRealizations())
    NBE_FAIL(
        QStringLiteral("%1 values for %2 realizations").arg(values.size()).arg(getNRealizations()));
  for (int rank = 0; rank < values.size(); ++rank)
    setRealizationValue(rank, position, values[rank]);
}

bool NbdVariableMulti::isUndefined(int position) const
{
  return !NbbGlobal::isDefined(_currentColumn()[position]);
}

void NbdVariableMulti::setToUndefined(int position)
{
  _currentColumn()[position] = NbbGlobal::F_FFFF;
}

int NbdVariableMulti::getNDefined() const
{
  return NbdColumnOperations::countDefined(_currentColumn());
}

double NbdVariableMulti::getValue(int position) const
{
  return nbdConvert<double>(_currentColumn()[position]);
}

void NbdVariableMulti::setValue(int position, double value)
{
  _currentColumn()[position] = nbdConvert<float>(value);
}

void NbdVariableMulti::getValuesAsDouble(int first, int n, double *out) const
{
  nbdConvertArray(_currentColumn().data() + first, n, out);
}

void NbdVariableMulti::setValuesFromDouble(int first, int n, const double *in)
{
  nbdConvertArray(in, n, _currentColumn().data() + first);
}

void NbdVariableMulti::appendValue(double value)
{
  _checkSize(qint64(_nValues) + 1);
  resizeAndFill(_nValues + 1);
  setValue(_nValues - 1, value);
}

QVariant NbdVariableMulti::getVariant(int position) const
{
  return isUndefined(position) ? QVariant() : QVariant(_currentColumn()[position]);
}

void NbdVariableMulti::setVariant(int position, const QVariant &value)
{
  double number = NbbGlobal::D_FFFF;
  NbbGlobal::convertVariant(value, number);
  setValue(position, number);
}

void NbdVariableMulti::copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n)
{
  if (&other == this)
    return copyValuesFrom(*other.clone(), otherFirst, first, n);
  _checkRange(first, n);
  _checkOtherRange(other, otherFirst, n);
  NbdValueCopier<float> copier(otherFirst, n, _currentColumn().data() + first);
  other.acceptVisitor(copier);
  if (!copier.isDone())
    _refuseConversion(other, *this);
}

void NbdVariableMulti::copySamplesFrom(const NbdAVariable &other, int otherFirst, int first, int n)
{
  if (!other.isMultiRealizations())
    return copyValuesFrom(other, otherFirst, first, n);
  if (&other == this)
    return copySamplesFrom(*other.clone(), otherFirst, first, n);
  _checkRange(first, n);
  _checkOtherRange(other, otherFirst, n);
  const auto &multi = static_cast<const NbdVariableMulti &>(other);
  for (int rank = 0; rank < getNRealizations(); ++rank) {
    const int otherRank = multi._indices.indexOf(_indices[rank]);
    if (otherRank >= 0)
      std::copy_n(multi.getArrayConst(otherRank) + otherFirst, n, getArray(rank) + first);
  }
}

std::vector<int> NbdVariableMulti::getSortedPositions(bool ascending) const
{
  return NbdColumnOperations::sortedPositions(_currentColumn(), ascending);
}

void NbdVariableMulti::resizeAndFill(int n)
{
  _checkSize(n);
  for (NbdSharedArray<float> &column : _columns)
    column.get().resize(n, NbbGlobal::F_FFFF);
  _nValues = n;
}

void NbdVariableMulti::reserve(int n)
{
  _checkSize(n);
  for (NbdSharedArray<float> &column : _columns)
    column.get().reserve(n);
}

void NbdVariableMulti::squeeze()
{
  for (NbdSharedArray<float> &column : _columns)
    column.get().shrink_to_fit();
}

void NbdVariableMulti::insertUndefinedValues(int position, int count)
{
  _checkRange(position, 0);
  _checkSize(count);
  _checkSize(qint64(_nValues) + count);
  for (NbdSharedArray<float> &column : _columns) {
    std::vector<float> &values = column.get();
    values.insert(values.begin() + position, count, NbbGlobal::F_FFFF);
  }
  _nValues += count;
}

void NbdVariableMulti::removeValues(int first, int count)
{
  _checkRange(first, count);
  for (NbdSharedArray<float> &column : _columns) {
    std::vector<float> &values = column.get();
    values.erase(values.begin() + first, values.begin() + first + count);
  }
  _nValues -= count;
}

void NbdVariableMulti::compress(const unsigned char *keep)
{
  for (NbdSharedArray<float> &column : _columns)
    NbdColumnOperations::compress(column.get(), keep);
  _nValues -= int(std::count(keep, keep + _nValues, 0));
}

void NbdVariableMulti::extract(const int *positions, int n)
{
  for (NbdSharedArray<float> &column : _columns)
    column = NbdSharedArray<float>(NbdColumnOperations::extracted(column.getConst(), positions, n));
  _nValues = n;
}

void NbdVariableMulti::detachData()
{
  for (NbdSharedArray<float> &column : _columns)
    column.get();
}

void NbdVariableMulti::_serialize(QDataStream &stream) const
{
  _writeHeader(stream);
  stream << quint32(_indices.size()) << quint32(_nValues) << qint32(_current);
  for (const NbdMacroIndex &index : _indices)
    stream << index;
  for (const NbdSharedArray<float> &column : _columns)
    NbdColumnOperations::write(stream, column.getConst());
}

void NbdVariableMulti::_unserialize(QDataStream &stream, unsigned int)
{
  NbdVariableMulti read;
  read._setHeader(_readHeader(stream));
  quint32 nRealizations = 0, nValues = 0;
  qint32 current = 0;
  stream >> nRealizations >> nValues >> current;
  _checkCount(stream, nRealizations, MINIMUM_INDEX_BYTES, MAXIMUM_REALIZATIONS);
  _checkCount(stream, nValues, nRealizations * qint64(sizeof(float)),
              std::numeric_limits<int>::max());
  if (current < 0 || current > std::max(0, int(nRealizations) - 1))
    _refuse(QObject::tr("bad rank of realization %1").arg(current));

  QSet<NbdMacroIndex> known;
  for (quint32 rank = 0; rank < nRealizations; ++rank) {
    NbdMacroIndex index;
    stream >> index;
    _checkStream(stream);
    if (!read.getMacroIndexInfo().isConsistent(index) || known.contains(index))
      _refuse(QObject::tr("bad macro index"));
    known.insert(index);
    read._indices << index;
  }
  for (quint32 rank = 0; rank < nRealizations; ++rank) {
    read._columns.emplace_back(NbdColumnOperations::read<float>(stream, int(nValues)));
    _checkStream(stream);
  }
  read._nValues = int(nValues);
  read._current = current;
  *this = read;
}

const std::vector<float> &NbdVariableMulti::_currentColumn() const
{
  if (_columns.empty())
    NBE_FAIL(QStringLiteral("variable '%1' has no realization").arg(getName()));
  return _columns[_current].getConst();
}

std::vector<float> &NbdVariableMulti::_currentColumn()
{
  if (_columns.empty())
    NBE_FAIL(QStringLiteral("variable '%1' has no realization").arg(getName()));
  return _columns[_current].get();
}
