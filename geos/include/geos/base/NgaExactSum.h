#pragma once

/// A sum that does not depend on the order of its terms: 128-bit fixed point with steps of 2^-80.
///
/// Each term is rounded once to the nearest step (terms of an absolute value above 2^-27 not at
/// all); adding is exact. A term beyond +-2^40 counts as that bound, so that 2^7 of the largest
/// terms, or 10^12 terms of the size of 100, fit. Undefined terms are left out.
class NgaExactSum
{
public:
  void add(double term);
  NgaExactSum &operator+=(const NgaExactSum &other);

  /// The sum, rounded to the nearest double.
  double getValue() const;

private:
  __extension__ using _Fixed = __int128;

  _Fixed _steps = 0;
};
