#include "basic/data/NbdAVariable_impl.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "data/private/NbdColumnOperations.h"
#include "data/private/NbdValueCopier.h"

#include <QObject>

#include <limits>

namespace {

/// Number of a variant in storage type T; undefined when it has none.
template <class T>
T numberOf(const QVariant &value)
{
  bool isInteger = false;
  if (value.userType() == QMetaType::LongLong) {
    const qint64 integer = value.toLongLong(&isInteger);
    return nbdConvert<T>(integer);
  }
  double number = NbbGlobal::D_FFFF;
  NbbGlobal::convertVariant(value, number);
  return nbdConvert<T>(number);
}

NbgVector3D pointOf(const QVariant &value)
{
  const QVariantList list = value.toList();
  NbgVector3D point = NbgVector3D::Undefined;
  for (int axis = 0; axis < 3 && list.size() == 3; ++axis)
    NbbGlobal::convertVariant(list[axis], point[axis]);
  return point;
}

template <class T>
T valueOf(const QVariant &value)
{
  if constexpr (std::is_arithmetic_v<T>)
    return numberOf<T>(value);
  else if constexpr (std::is_same_v<T, QString>)
    return value.toString();
  else if constexpr (std::is_same_v<T, NbgVector3D>)
    return pointOf(value);
  else
    return T{value.toUInt()};
}

template <class T>
QVariant variantOf(const T &value)
{
  if constexpr (std::is_same_v<T, unsigned char>)
    return QVariant(value != 0);
  else if constexpr (std::is_same_v<T, qint16>)
    return QVariant(int(value));
  else if constexpr (std::is_same_v<T, NbgVector3D>)
    return QVariantList{value.x(), value.y(), value.z()};
  else if constexpr (std::is_same_v<T, NbdColor>)
    return QVariant(value.argb);
  else
    return QVariant(value);
}

}  // namespace

template <class T, class Base>
int NbdAVariable_impl<T, Base>::getNDefined() const
{
  return NbdColumnOperations::countDefined(_values.getConst());
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::appendValueAsType(const T &value)
{
  this->_checkSize(qint64(getNValues()) + 1);
  _values.get().push_back(value);
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::setVector(std::vector<T> values)
{
  this->_checkSize(qint64(values.size()));
  _values = NbdSharedArray<T>(std::move(values));
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::appendValues(const T *values, int n)
{
  this->_checkSize(n);
  this->_checkSize(qint64(getNValues()) + n);
  std::vector<T> &column = _values.get();
  column.insert(column.end(), values, values + n);
}

template <class T, class Base>
int NbdAVariable_impl<T, Base>::find(const T &value, int from) const
{
  const std::vector<T> &column = _values.getConst();
  const auto found =
      std::find(column.begin() + std::clamp(from, 0, getNValues()), column.end(), value);
  return found == column.end() ? -1 : int(found - column.begin());
}

template <class T, class Base>
QVariant NbdAVariable_impl<T, Base>::getVariant(int position) const
{
  return isUndefined(position) ? QVariant() : variantOf(getValueAsType(position));
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::setVariant(int position, const QVariant &value)
{
  setValueAsType(position, valueOf<T>(value));
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::copyValuesFrom(const NbdAVariable &other, int otherFirst,
                                                int first, int n)
{
  if (&other == this)
    return copyValuesFrom(*other.clone(), otherFirst, first, n);
  this->_checkRange(first, n);
  this->_checkOtherRange(other, otherFirst, n);
  NbdValueCopier<T> copier(otherFirst, n, getArray() + first);
  other.acceptVisitor(copier);
  if (!copier.isDone())
    this->_refuseConversion(other, *this);
}

template <class T, class Base>
std::vector<int> NbdAVariable_impl<T, Base>::getSortedPositions(bool ascending) const
{
  return NbdColumnOperations::sortedPositions(_values.getConst(), ascending);
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::resizeAndFill(int n, const T &value)
{
  this->_checkSize(n);
  if (n == 0)
    _values = NbdSharedArray<T>();
  else
    _values.get().resize(n, value);
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::reserve(int n)
{
  this->_checkSize(n);
  _values.get().reserve(n);
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::squeeze()
{
  _values.get().shrink_to_fit();
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::insertUndefinedValues(int position, int count)
{
  this->_checkRange(position, 0);
  this->_checkSize(count);
  this->_checkSize(qint64(getNValues()) + count);
  std::vector<T> &column = _values.get();
  column.insert(column.begin() + position, count, NbdValueTraits<T>::initial());
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::removeValues(int first, int count)
{
  this->_checkRange(first, count);
  std::vector<T> &column = _values.get();
  column.erase(column.begin() + first, column.begin() + first + count);
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::compress(const unsigned char *keep)
{
  NbdColumnOperations::compress(_values.get(), keep);
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::extract(const int *positions, int n)
{
  _values = NbdSharedArray<T>(NbdColumnOperations::extracted(_values.getConst(), positions, n));
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::_serialize(QDataStream &stream) const
{
  this->_writeHeader(stream);
  stream << quint32(getNValues());
  NbdColumnOperations::write(stream, _values.getConst());
}

template <class T, class Base>
void NbdAVariable_impl<T, Base>::_unserialize(QDataStream &stream, unsigned int)
{
  const NbdAVariable::Header header = this->_readHeader(stream);
  quint32 count = 0;
  stream >> count;
  this->_checkCount(stream, count, NbdColumnOperations::bytesInStream<T>(),
                    std::numeric_limits<int>::max());
  std::vector<T> values = NbdColumnOperations::read<T>(stream, int(count));
  this->_checkStream(stream);
  if constexpr (std::is_same_v<T, unsigned char>) {
    if (std::any_of(values.begin(), values.end(), [](T value) { return value > 1; }))
      this->_refuse(QObject::tr("a selection holds 0 and 1 only"));
  }
  this->_setHeader(header);
  _values = NbdSharedArray<T>(std::move(values));
}

template class NbdAVariable_impl<double, NbdAVariableNumeric>;
template class NbdAVariable_impl<float, NbdAVariableNumeric>;
template class NbdAVariable_impl<int, NbdAVariableNumeric>;
template class NbdAVariable_impl<qint64, NbdAVariableNumeric>;
template class NbdAVariable_impl<qint16, NbdAVariableNumeric>;
template class NbdAVariable_impl<unsigned char, NbdAVariableNumeric>;
template class NbdAVariable_impl<QString>;
template class NbdAVariable_impl<NbgVector3D>;
template class NbdAVariable_impl<NbdColor>;
