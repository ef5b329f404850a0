#include "basic/geom/NbgGeomCuboid.h"

NbgGeomCuboid::NbgGeomCuboid(const NbgVector3D &center, const NbgVector3D &size,
                             const NbgRotation &rotation)
{
  setSolid(center, size, rotation);
}

bool NbgGeomCuboid::_isIncludedLocal(const NbgVector3D &point) const
{
  const NbgVector3D &size = getSize();
  return 2. * std::fabs(point.x()) <= size.x() && 2. * std::fabs(point.y()) <= size.y() &&
         2. * std::fabs(point.z()) <= size.z();
}
