#pragma once

#include "basic/base/NbbAEnum.h"

/// Axis of a local frame; the value is its rank.
class NbgEAxisType : public NbbAEnum
{
public:
  static const NbgEAxisType AXIS_U;
  static const NbgEAxisType AXIS_V;
  static const NbgEAxisType AXIS_W;

private:
  NbgEAxisType(const QString &label, int value, const char *key) : NbbAEnum(label, value, key) {}
};

inline bool operator==(const NbgEAxisType &a, const NbgEAxisType &b)
{
  return a.getValue() == b.getValue();
}
inline bool operator!=(const NbgEAxisType &a, const NbgEAxisType &b)
{
  return !(a == b);
}
