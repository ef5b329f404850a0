#pragma once

#include "basic/base/NbbAEnum.h"

#include <type_traits>

/// A set of values of an enumeration whose values are bits: a keyed enumeration or a plain one.
template <class Enum>
class NbbAFlags
{
public:
  NbbAFlags() = default;
  explicit NbbAFlags(int mask) : _mask(mask) {}
  NbbAFlags(const Enum &flag) : _mask(_value(flag)) {}

  /// True when all bits of `flag` are set; a flag of value 0 only matches the empty set.
  bool testFlag(const Enum &flag) const
  {
    const int value = _value(flag);
    return (_mask & value) == value && (value != 0 || _mask == 0);
  }

  void setFlag(const Enum &flag, bool on = true)
  {
    _mask = on ? (_mask | _value(flag)) : (_mask & ~_value(flag));
  }

  int getMask() const { return _mask; }
  bool isEmpty() const { return _mask == 0; }

  NbbAFlags operator|(const NbbAFlags &other) const { return NbbAFlags(_mask | other._mask); }
  NbbAFlags operator&(const NbbAFlags &other) const { return NbbAFlags(_mask & other._mask); }
  bool operator==(const NbbAFlags &other) const { return _mask == other._mask; }
  bool operator!=(const NbbAFlags &other) const { return _mask != other._mask; }

private:
  static int _value(const Enum &flag)
  {
    if constexpr (std::is_base_of_v<NbbAEnum, Enum>)
      return flag.getValue();
    else
      return static_cast<int>(flag);
  }

  int _mask = 0;
};
