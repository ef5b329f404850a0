#pragma once

#include "basic/base/NbbAEnum.h"

/// Number of dimensions of a data set or a model.
class NbgEDimension : public NbbAEnum
{
public:
  static const NbgEDimension DIM_1D;
  static const NbgEDimension DIM_2D;
  static const NbgEDimension DIM_3D;

  /// The dimension with `nDim` axes; a programming error when it is not 1, 2 or 3.
  static const NbgEDimension &fromNDim(int nDim);

  int getNDim() const { return getValue(); }
  bool is1D() const { return getNDim() == 1; }
  bool is2D() const { return getNDim() == 2; }
  bool is3D() const { return getNDim() == 3; }

private:
  NbgEDimension(const QString &label, int value, const char *key) : NbbAEnum(label, value, key) {}
};

inline bool operator==(const NbgEDimension &a, const NbgEDimension &b)
{
  return a.getValue() == b.getValue();
}
inline bool operator!=(const NbgEDimension &a, const NbgEDimension &b)
{
  return !(a == b);
}
