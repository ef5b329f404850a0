#include "basic/geom/NbgDirection.h"

#include "basic/geom/NbgAngle.h"

NbgVector3D NbgDirection::toVector() const
{
  const NbgAngle azimuth = NbgAngle::fromDegrees(_azimuth);
  const NbgAngle dip = NbgAngle::fromDegrees(_dip);
  return {azimuth.sine() * dip.cosine(), azimuth.cosine() * dip.cosine(), -dip.sine()};
}
