#include "basic/geom/NbgVector3D.h"

#include <QDataStream>
#include <QStringList>

namespace {
constexpr double DEGREES_PER_RADIAN = 180. / M_PI;
}

double NbgVector3D::dirHorizontal() const
{
  double angle = std::atan2(_v[1], _v[0]);
  if (_v[0] == 0. && _v[1] == 0.)
    return 0.;  // atan2 gives pi for (-0, 0).
  if (angle < 0.)
    angle += 2. * M_PI;
  // The sum rounds up to 2 pi for the smallest negative angles; -0 is made 0.
  return angle >= 2. * M_PI || angle == 0. ? 0. : angle;
}

void NbgVector3D::getAzimuthDip(double &azimuth, double &dip) const
{
  const double horizontal = std::hypot(_v[0], _v[1]);
  azimuth = horizontal == 0. ? 0. : std::atan2(_v[0], _v[1]) * DEGREES_PER_RADIAN;
  if (azimuth < 0.)
    azimuth += 360.;
  if (azimuth >= 360. || azimuth == 0.)
    azimuth = 0.;
  dip = _v[2] == 0. ? 0. : std::atan2(-_v[2], horizontal) * DEGREES_PER_RADIAN;
}

QString NbgVector3D::toString() const
{
  QStringList texts;
  for (double value : _v)
    texts += NbbGlobal::isDefined(value) ? QString::number(value) : NbbGlobal::STR_NA;
  return QStringLiteral("(%1)").arg(texts.join(QStringLiteral(", ")));
}

QString NbgVector3D::debug(int level) const
{
  return QString(2 * qMax(level, 0), ' ') + toString() + '\n';
}

QDataStream &operator<<(QDataStream &stream, const NbgVector3D &vector)
{
  return stream << quint32(3) << vector.x() << vector.y() << vector.z();
}

QDataStream &operator>>(QDataStream &stream, NbgVector3D &vector)
{
  quint32 count = 0;
  stream >> count;
  if (stream.status() == QDataStream::Ok && count != 3)
    stream.setStatus(QDataStream::ReadCorruptData);
  if (stream.status() != QDataStream::Ok)
    return stream;

  double x = 0., y = 0., z = 0.;
  stream >> x >> y >> z;
  if (stream.status() == QDataStream::Ok)
    vector.set(x, y, z);
  return stream;
}
