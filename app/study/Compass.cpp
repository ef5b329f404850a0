#include "app/study/Compass.h"

#include "basic/geom/NbgAngle.h"
#include "basic/geom/NbgRotationConventionGeologist.h"
#include "basic/geom/NbgVector3D.h"

#include <QObject>
#include <QtMath>

#include <cmath>

namespace orvenal {

namespace {

QString degrees(double angle)
{
  const double rounded = std::round(angle * 1e6) / 1e6;
  return QString::number(rounded == 0. ? 0. : rounded, 'g', 9) + QChar(0xB0);
}

/// Into [0, 360), the last bits of a full turn counting as 0.
double turn(double angle)
{
  const double rest = std::fmod(angle, 360.);
  const double positive = rest < 0. ? rest + 360. : rest;
  return positive >= 360. - 1e-9 ? 0. : positive;
}

}  // namespace

NbgRotation Compass::frame(double azimuth, double dip, double pitch)
{
  return NbgRotation(azimuth, dip, pitch, NbgRotationConventionGeologist::ID);
}

NbgVector3D Compass::anglesOf(const NbgRotation &rotation)
{
  return NbgRotationConventionGeologist().toAngles(rotation.getMatrix());
}

NbgRotation Compass::gridFrame(double azimuthOfRows)
{
  return azimuthOfRows == 0. ? NbgRotation() : NbgRotation(-azimuthOfRows, 0., 0.);
}

double Compass::azimuthOfRows(const NbgRotation &rotation)
{
  return azimuth(rotation.getAxisY());
}

double Compass::toAzimuth(double angle, AngleConvention convention)
{
  return convention == AngleConvention::MATHEMATICAL ? 90. - angle : angle;
}

double Compass::toAzimuthOfRows(double angle, AngleConvention convention)
{
  return convention == AngleConvention::MATHEMATICAL ? -angle : angle;
}

double Compass::azimuth(const NbgVector3D &direction)
{
  if (direction.x() == 0. && direction.y() == 0.)
    return 0.;
  return turn(qRadiansToDegrees(std::atan2(direction.x(), direction.y())));
}

double Compass::dip(const NbgVector3D &direction)
{
  return qRadiansToDegrees(std::atan2(-direction.z(), std::hypot(direction.x(), direction.y())));
}

QString Compass::describe(const NbgVector3D &direction, int nDimensions)
{
  const QString text = QObject::tr("azimuth %1").arg(degrees(azimuth(direction)));
  return nDimensions < 3 ? text : text + QObject::tr(", dip %1").arg(degrees(dip(direction)));
}

}  // namespace orvenal
