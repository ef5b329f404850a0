#include "basic/geom/NbgRotationConventionGeologist.h"

#include <QObject>

QString NbgRotationConventionGeologist::getName() const
{
  return QObject::tr("Geologist");
}

QString NbgRotationConventionGeologist::getAngleName(int angle) const
{
  switch (angle) {
    case 0:
      return QObject::tr("Azimuth");
    case 1:
      return QObject::tr("Dip");
    default:
      return QObject::tr("Pitch");
  }
}

NbgVector3D NbgRotationConventionGeologist::toDefaultAngles(const NbgVector3D &angles) const
{
  return {90. - angles.x(), angles.y(), angles.z()};
}

NbgVector3D NbgRotationConventionGeologist::fromDefaultAngles(const NbgVector3D &angles) const
{
  return {90. - angles.x(), angles.y(), angles.z()};
}
