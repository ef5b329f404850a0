#pragma once

#include "basic/base/NbbAEnum.h"

/// Unit in which an angle is given.
class NbgEAngleUnit : public NbbAEnum
{
public:
  static const NbgEAngleUnit DEGREE;
  static const NbgEAngleUnit RADIAN;

private:
  NbgEAngleUnit(const QString &label, int value, const char *key) : NbbAEnum(label, value, key) {}
};

inline bool operator==(const NbgEAngleUnit &a, const NbgEAngleUnit &b)
{
  return a.getValue() == b.getValue();
}
inline bool operator!=(const NbgEAngleUnit &a, const NbgEAngleUnit &b)
{
  return !(a == b);
}
