#pragma once

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdAVariable_impl.h"

/// The variables of one contiguous column of numbers.
template <class T>
class NbdAVariableNumeric_impl : public NbdAVariable_impl<T, NbdAVariableNumeric>
{
  using Base = NbdAVariable_impl<T, NbdAVariableNumeric>;

public:
  double getValue(int position) const override
  {
    return nbdConvert<double>(this->getValueAsType(position));
  }
  void setValue(int position, double value) override
  {
    this->setValueAsType(position, nbdConvert<T>(value));
  }
  void getValuesAsDouble(int first, int n, double *out) const override;
  void setValuesFromDouble(int first, int n, const double *in) override;

  void appendValue(double value) override { this->appendValueAsType(nbdConvert<T>(value)); }
  using NbdAVariable::appendValue;

protected:
  using Base::Base;
};

extern template class NbdAVariable_impl<double, NbdAVariableNumeric>;
extern template class NbdAVariable_impl<float, NbdAVariableNumeric>;
extern template class NbdAVariable_impl<int, NbdAVariableNumeric>;
extern template class NbdAVariable_impl<qint64, NbdAVariableNumeric>;
extern template class NbdAVariable_impl<qint16, NbdAVariableNumeric>;
extern template class NbdAVariable_impl<unsigned char, NbdAVariableNumeric>;
extern template class NbdAVariableNumeric_impl<double>;
extern template class NbdAVariableNumeric_impl<float>;
extern template class NbdAVariableNumeric_impl<int>;
extern template class NbdAVariableNumeric_impl<qint64>;
extern template class NbdAVariableNumeric_impl<qint16>;
extern template class NbdAVariableNumeric_impl<unsigned char>;
