#pragma once

#include <memory>

/// Gives `Base` a virtual clone that returns a copy of the most derived object.
///
/// The root of a family declares `virtual Root *_clone() const = 0` through
/// `NbbCloneable<Root, Root>`; each concrete class `T` derives from `NbbCloneable<T, Base>`.
template <class T, class Base>
class NbbCloneable : public Base
{
public:
  using Base::Base;
  NbbCloneable() = default;
  explicit NbbCloneable(const Base &base) : Base(base) {}

  /// A new copy; the caller owns it.
  T *clone() const { return static_cast<T *>(this->_clone()); }

protected:
  Base *_clone() const override { return new T(static_cast<const T &>(*this)); }
};
