#include "basic/geom/NbgARotationConvention.h"

#include "basic/geom/NbgRotationConventionDefault.h"
#include "basic/geom/NbgRotationMatrix.h"

#include <QStringList>

NbgRotationMatrix NbgARotationConvention::toMatrix(const NbgVector3D &angles) const
{
  return NbgRotationConventionDefault::matrixFromAngles(toDefaultAngles(angles));
}

NbgVector3D NbgARotationConvention::toAngles(const NbgRotationMatrix &matrix) const
{
  return fromDefaultAngles(NbgRotationConventionDefault::anglesFromMatrix(matrix));
}

QString NbgARotationConvention::toText(const NbgVector3D &angles) const
{
  QStringList texts;
  for (int angle = 0; angle < 3; ++angle)
    texts += QStringLiteral("%1=%2").arg(getAngleName(angle), QString::number(angles[angle]));
  return texts.join(' ');
}
