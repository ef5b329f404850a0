#include "basic/geom/NbgRotationConventionDefault.h"

#include "basic/geom/NbgAngle.h"
#include "basic/geom/NbgDirection.h"
#include "basic/geom/NbgRotation.h"

#include <QObject>

namespace {

/// -0 and what prints as 0 become 0, so that names are the same for both ends of a line.
double roundForName(double degrees)
{
  const double rounded = QString::number(degrees, 'g', 6).toDouble();
  return std::fabs(rounded) < 1e-9 ? 0. : rounded;
}

}  // namespace

QString NbgRotationConventionDefault::getName() const
{
  return QObject::tr("Mathematician");
}

QString NbgRotationConventionDefault::getAngleName(int angle) const
{
  return QString(QChar("ZYX"[angle]));
}

NbgRotationMatrix NbgRotationConventionDefault::matrixFromAngles(const NbgVector3D &angles)
{
  double s[3], c[3];
  for (int i = 0; i < 3; ++i) {
    const NbgAngle angle = NbgAngle::fromDegrees(angles[i]);
    s[i] = angle.sine();
    c[i] = angle.cosine();
  }
  const NbgVector3D u(c[0] * c[1], s[0] * c[1], -s[1]);
  const NbgVector3D v(c[0] * s[1] * s[2] - s[0] * c[2], s[0] * s[1] * s[2] + c[0] * c[2],
                      c[1] * s[2]);
  const NbgVector3D w(c[0] * s[1] * c[2] + s[0] * s[2], s[0] * s[1] * c[2] - c[0] * s[2],
                      c[1] * c[2]);
  return NbgRotationMatrix(u, v, w);
}

NbgVector3D NbgRotationConventionDefault::anglesFromMatrix(const NbgRotationMatrix &matrix)
{
  constexpr double degrees = 180. / M_PI;
  const auto m = [&matrix](int row, int column) { return matrix.get(row, column); };
  const double horizontal = std::hypot(m(0, 0), m(1, 0));
  const double a2 = std::atan2(-m(2, 0), horizontal) * degrees + 0.;
  // Close to the vertical the two other angles turn about one axis and only their sum is known.
  if (horizontal < 1e-12)
    return {std::atan2(-m(0, 1), m(1, 1)) * degrees + 0., a2, 0.};

  // a3 is read from Rz(-a1) M, so that near the vertical it makes up for the uncertainty of a1.
  const double cosine = m(0, 0) / horizontal;
  const double sine = m(1, 0) / horizontal;
  const double a3 =
      std::atan2(sine * m(0, 2) - cosine * m(1, 2), cosine * m(1, 1) - sine * m(0, 1));
  return {std::atan2(m(1, 0), m(0, 0)) * degrees + 0., a2, a3 * degrees + 0.};
}

NbgDirection NbgRotationConventionDefault::directionFromRotation(const NbgRotation &rotation)
{
  NbgDirection direction;
  direction.setFromVector(rotation.getAxisX());
  return direction;
}

NbgRotation NbgRotationConventionDefault::rotationFromDirection(const NbgDirection &direction)
{
  return NbgRotation(90. - direction.getAzimuth(), direction.getDip(), 0.);
}

QString NbgRotationConventionDefault::directionName(const NbgVector3D &direction)
{
  double azimuth, dip;
  direction.getAzimuthDip(azimuth, dip);
  azimuth = roundForName(azimuth);
  dip = roundForName(dip);
  // The opposite end of the line has the opposite dip; a vertical one is named downward.
  if (azimuth >= 360.) {
    azimuth = 0.;
  } else if (azimuth >= 180.) {
    azimuth = roundForName(azimuth - 180.);
    dip = -dip;
  }
  if (std::fabs(dip) == 90.) {
    azimuth = 0.;
    dip = 90.;
  }
  const QString name = QStringLiteral("N%1").arg(azimuth);
  return dip == 0. ? name : QObject::tr("%1 Dip %2").arg(name, QString::number(dip));
}
