#include "geos/base/NgaExactSum.h"

#include "basic/base/NbbGlobal.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int stepExponent = -80;
constexpr double largestTerm = 0x1p40;

}  // namespace

void NgaExactSum::add(double term)
{
  if (!NbbGlobal::isDefined(term))
    return;
  const double bounded = std::clamp(term, -largestTerm, largestTerm);
  _steps += _Fixed(std::nearbyint(std::ldexp(bounded, -stepExponent)));
}

NgaExactSum &NgaExactSum::operator+=(const NgaExactSum &other)
{
  _steps += other._steps;
  return *this;
}

double NgaExactSum::getValue() const
{
  return std::ldexp(double(_steps), stepExponent);
}
