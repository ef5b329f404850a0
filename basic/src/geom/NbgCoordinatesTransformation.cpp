#include "basic/geom/NbgCoordinatesTransformation.h"

#include "basic/error/NbeAssertion.h"

void NbgCoordinatesTransformation::setScale(const NbgVector3D &scale)
{
  if (scale.x() == 0. || scale.y() == 0. || scale.z() == 0.)
    NBE_FAIL(QStringLiteral("The scale must not be 0"));
  _scale = scale;
}

NbgVector3D NbgCoordinatesTransformation::toRelativeSystem(const NbgVector3D &reference) const
{
  return _rotation.worldToLocal(reference - _origin).componentsProduct(_scale);
}

NbgVector3D NbgCoordinatesTransformation::toReferenceSystem(const NbgVector3D &relative) const
{
  const NbgVector3D local(relative.x() / _scale.x(), relative.y() / _scale.y(),
                          relative.z() / _scale.z());
  return _rotation.localToWorld(local) + _origin;
}
