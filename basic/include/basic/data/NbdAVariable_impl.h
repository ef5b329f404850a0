#pragma once

#include "basic/data/NbdAVariable.h"
#include "basic/data/NbdSharedArray.h"
#include "basic/data/NbdValueConversion.h"

#include <vector>

/// Storage of the variables that hold one contiguous column of T. `Base` is NbdAVariable or
/// NbdAVariableNumeric.
///
/// Hot loops take getArrayConst() or getArray() once and work on the pointer: getArray() makes the
/// values independent of copies, the access to single values tests for it every time.
template <class T, class Base = NbdAVariable>
class NbdAVariable_impl : public Base
{
public:
  using ValueType = T;

  int getNValues() const override { return int(_values.getConst().size()); }
  bool isUndefined(int position) const override
  {
    return !NbdValueTraits<T>::isDefined(_values.getConst()[position]);
  }
  void setToUndefined(int position) override { _values.get()[position] = _undef(); }
  int getNDefined() const override;

  const T &getValueAsType(int position) const { return _values.getConst()[position]; }
  void setValueAsType(int position, const T &value) { _values.get()[position] = value; }
  void appendValueAsType(const T &value);

  /// The values, one after another; null without values. Pointers hold until the number of values
  /// changes, and those for reading until the variable is written.
  const T *getArrayConst() const { return _values.getConst().data(); }
  T *getArray() { return _values.get().data(); }

  const std::vector<T> &getVector() const { return _values.getConst(); }
  /// Replaces all values; the variable takes their number.
  void setVector(std::vector<T> values);

  void appendValues(const T *values, int n);

  /// Position of the first such value at or behind `from`; -1 when there is none.
  int find(const T &value, int from = 0) const;

  QVariant getVariant(int position) const override;
  void setVariant(int position, const QVariant &value) override;

  void copyValuesFrom(const NbdAVariable &other, int otherFirst, int first, int n) override;
  std::vector<int> getSortedPositions(bool ascending) const override;

  void resizeAndFill(int n) override { resizeAndFill(n, NbdValueTraits<T>::initial()); }
  void resizeAndFill(int n, const T &value);
  void reserve(int n) override;
  void squeeze() override;
  void insertUndefinedValues(int position, int count) override;
  void removeValues(int first, int count) override;
  void compress(const unsigned char *keep) override;
  void extract(const int *positions, int n) override;
  void detachData() override { _values.get(); }

  /// Whether the values are, for now, those of `other` in memory.
  bool isSharedWith(const NbdAVariable_impl &other) const
  {
    return _values.isSharedWith(other._values);
  }

protected:
  using Base::Base;

  static T _undef() { return NbdValueTraits<T>::undefined(); }

  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;

private:
  NbdSharedArray<T> _values;
};

extern template class NbdAVariable_impl<QString>;
extern template class NbdAVariable_impl<NbgVector3D>;
extern template class NbdAVariable_impl<NbdColor>;
