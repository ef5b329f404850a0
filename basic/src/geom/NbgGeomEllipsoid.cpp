#include "basic/geom/NbgGeomEllipsoid.h"

NbgGeomEllipsoid::NbgGeomEllipsoid(const NbgVector3D &center, const NbgVector3D &size,
                                   const NbgRotation &rotation)
{
  setSolid(center, size, rotation);
}

bool NbgGeomEllipsoid::_isIncludedLocal(const NbgVector3D &point) const
{
  return point.isInEllipsoid(0.5 * getSize());
}
