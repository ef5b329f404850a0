#pragma once

/// A partial result that another of its kind can be added to: what workers gather from one buffer
/// and hand in to their calculator.
class NgaIAdditive
{
public:
  virtual ~NgaIAdditive() = default;

  /// Adds `other`, which is of the same class and shape; anything else is a programming error.
  virtual void doSum(const NgaIAdditive &other) = 0;

  /// A new copy; the caller owns it.
  virtual NgaIAdditive *clone() const = 0;
};
