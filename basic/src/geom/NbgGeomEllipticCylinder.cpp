#include "basic/geom/NbgGeomEllipticCylinder.h"

NbgGeomEllipticCylinder::NbgGeomEllipticCylinder(const NbgVector3D &center, const NbgVector3D &size,
                                                 const NbgRotation &rotation)
{
  setSolid(center, size, rotation);
}

bool NbgGeomEllipticCylinder::_isIncludedLocal(const NbgVector3D &point) const
{
  const NbgVector3D &size = getSize();
  const NbgVector3D inPlane(point.x(), point.y(), 0.);
  return 2. * std::fabs(point.z()) <= size.z() && inPlane.isInEllipsoid(0.5 * size);
}
