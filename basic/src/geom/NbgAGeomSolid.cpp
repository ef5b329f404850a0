#include "basic/geom/NbgAGeomSolid.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomCuboid.h"

NbgAGeomSolid::~NbgAGeomSolid() = default;

void NbgAGeomSolid::setSolid(const NbgVector3D &center, const NbgVector3D &size,
                             const NbgRotation &rotation)
{
  _center = center;
  _size = size;
  _rotation = rotation;
}

bool NbgAGeomSolid::isValid() const
{
  return _center.isDefined() && _size.isDefined() && _size.minimum() >= 0.;
}

bool NbgAGeomSolid::isIncluded(const NbgGeomCuboid &cuboid) const
{
  for (int rank = 0; rank < 8; ++rank) {
    if (!isIncluded(cuboid.getApex(rank)))
      return false;
  }
  return true;
}

NbgVector3D NbgAGeomSolid::getApex(int rank) const
{
  if (rank < 0 || rank > 7)
    NBE_FAIL(QStringLiteral("Apex rank out of range"));
  const NbgVector3D signs(rank & 1 ? 0.5 : -0.5, rank & 2 ? 0.5 : -0.5, rank & 4 ? 0.5 : -0.5);
  return _rotation.localToWorld(_size.componentsProduct(signs)) + _center;
}

NbgBox NbgAGeomSolid::getBoundingBox() const
{
  NbgBox box;
  for (int rank = 0; rank < 8; ++rank)
    box.extendWith(getApex(rank));
  return box;
}
