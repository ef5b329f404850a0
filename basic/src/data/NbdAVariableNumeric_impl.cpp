#include "basic/data/NbdAVariableNumeric_impl.h"

template <class T>
void NbdAVariableNumeric_impl<T>::getValuesAsDouble(int first, int n, double *out) const
{
  nbdConvertArray(this->getArrayConst() + first, n, out);
}

template <class T>
void NbdAVariableNumeric_impl<T>::setValuesFromDouble(int first, int n, const double *in)
{
  nbdConvertArray(in, n, this->getArray() + first);
}

template class NbdAVariableNumeric_impl<double>;
template class NbdAVariableNumeric_impl<float>;
template class NbdAVariableNumeric_impl<int>;
template class NbdAVariableNumeric_impl<qint64>;
template class NbdAVariableNumeric_impl<qint16>;
template class NbdAVariableNumeric_impl<unsigned char>;
