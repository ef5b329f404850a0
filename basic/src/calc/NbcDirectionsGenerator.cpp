#include "basic/calc/NbcDirectionsGenerator.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgAngle.h"

#include <cmath>

namespace {

// pi (3 - sqrt(5))
constexpr double GOLDEN_ANGLE = 2.399963229728653322;

}  // namespace

void NbcDirectionsGenerator::createRegularInPlane(int n)
{
  if (n < 1)
    NBE_FAIL(QStringLiteral("Invalid number of directions"));
  _orientations.clear();
  for (int i = 0; i < n; ++i)
    _orientations << _reference * NbgRotation(NbgAngle::fromDegrees(i * 180. / n));
}

void NbcDirectionsGenerator::createNormalToPlane()
{
  // Turning about V by -90 degrees brings U to W.
  _orientations = {_reference * NbgRotation(0., -90., 0.)};
}

void NbcDirectionsGenerator::createRegularIn3D(int n)
{
  if (n < 1)
    NBE_FAIL(QStringLiteral("Invalid number of directions"));
  _orientations.clear();
  for (int i = 0; i < n; ++i) {
    const double z = (i + 0.5) / n;
    const double horizontal = std::sqrt(1. - z * z);
    const NbgVector3D direction(horizontal * std::cos(i * GOLDEN_ANGLE),
                                horizontal * std::sin(i * GOLDEN_ANGLE), z);
    _orientations << _reference * NbgRotation::fromDirection(direction);
  }
}

const NbgRotation &NbcDirectionsGenerator::getOrientation(int i) const
{
  if (i < 0 || i >= _orientations.size())
    NBE_FAIL(QStringLiteral("Invalid direction rank"));
  return _orientations[i];
}
