#include "basic/geom/NbgIntVector3D.h"

QString NbgIntVector3D::toString() const
{
  return QStringLiteral("(%1, %2, %3)").arg(_v[0]).arg(_v[1]).arg(_v[2]);
}
