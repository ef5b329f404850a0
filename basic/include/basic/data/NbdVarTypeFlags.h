#pragma once

#include "basic/base/NbbAFlags.h"
#include "basic/data/NbdEVarType.h"

/// A set of value types.
class NbdVarTypeFlags : public NbbAFlags<NbdEVarType>
{
public:
  static const NbdVarTypeFlags ANY;
  static const NbdVarTypeFlags NUMERIC;

  NbdVarTypeFlags() = default;
  NbdVarTypeFlags(const NbdEVarType &type) : NbbAFlags(type) {}
  NbdVarTypeFlags(const NbbAFlags<NbdEVarType> &flags) : NbbAFlags(flags) {}
};
