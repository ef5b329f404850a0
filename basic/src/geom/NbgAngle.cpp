#include "basic/geom/NbgAngle.h"

#include "basic/geom/NbgEAngleUnit.h"

#include <cmath>

namespace {

/// Degrees in [-180, 180] and the quadrant's sine: reduced in degrees, where it is exact.
double sineOfDegrees(double degrees)
{
  double reduced = std::remainder(degrees, 360.);
  // Folded into [-90, 90], where 0 and the ends give exact sines.
  if (reduced > 90.)
    reduced = 180. - reduced;
  else if (reduced < -90.)
    reduced = -180. - reduced;
  return std::sin(reduced * (M_PI / 180.));
}

}  // namespace

NbgAngle::NbgAngle(double value, const NbgEAngleUnit &unit)
    : _degrees(unit == NbgEAngleUnit::RADIAN ? value * (180. / M_PI) : value)
{
}

NbgAngle NbgAngle::fromRadians(double radians)
{
  return NbgAngle(radians, NbgEAngleUnit::RADIAN);
}

double NbgAngle::getRadianValue() const
{
  return _degrees * (M_PI / 180.);
}

double NbgAngle::sine() const
{
  return sineOfDegrees(_degrees);
}

double NbgAngle::cosine() const
{
  // cos(a) = sin(90 - |a|); the reduction comes first, the subtraction is then exact near 90.
  return sineOfDegrees(90. - std::fabs(std::remainder(_degrees, 360.)));
}
