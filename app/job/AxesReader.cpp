#include "app/job/AxesReader.h"

#include "app/job/JobObject.h"
#include "app/study/Compass.h"

#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

double readAngle(const JobObject &object, const QString &key)
{
  return object.has(key) ? object.number(key) : 0.;
}

void refuseInclination(const JobObject &object, int nDimensions)
{
  if (nDimensions > 2)
    return;
  for (const QString &key : {QStringLiteral("dip"), QStringLiteral("pitch")}) {
    if (object.has(key))
      object.fail(key, QObject::tr("has a meaning in three dimensions only"));
  }
}

}  // namespace

QStringList angleKeys()
{
  return {QStringLiteral("azimuth"), QStringLiteral("dip"), QStringLiteral("pitch")};
}

NbgRotation readTurn(const JobObject &object, int nDimensions)
{
  refuseInclination(object, nDimensions);
  const double azimuth = Compass::toAzimuth(readAngle(object, QStringLiteral("azimuth")),
                                            object.getConventions().angles);
  return Compass::frame(azimuth, readAngle(object, QStringLiteral("dip")),
                        readAngle(object, QStringLiteral("pitch")));
}

NbgRotation readFrame(const JobObject &object, int nDimensions, bool needed)
{
  refuseInclination(object, nDimensions);
  const bool isAzimuth = object.getConventions().angles == AngleConvention::AZIMUTH;
  if (needed && !object.has(QStringLiteral("azimuth")))
    object.fail(QStringLiteral("azimuth"),
                QObject::tr("missing; it says where the first axis (U) points, in degrees %1")
                    .arg(isAzimuth ? QObject::tr("clockwise from north")
                                   : QObject::tr("counter-clockwise from east")));
  if (!needed && nDimensions < 3)
    return NbgRotation();
  const QStringList keys = angleKeys();
  if (std::none_of(keys.begin(), keys.end(), [&](const QString &key) { return object.has(key); }))
    return NbgRotation();
  return readTurn(object, nDimensions);
}

NbgVector3D readLengths(const JobObject &object, const QString &single, const QString &list,
                        int nDimensions)
{
  if (object.has(single) && object.has(list))
    object.fail(list, QObject::tr("give \"%1\" or \"%2\", not both").arg(single, list));
  if (!object.has(list)) {
    if (!object.has(single))
      object.fail(
          single,
          QObject::tr("missing (\"%1\": one length, or \"%2\": one per axis)").arg(single, list));
    const double length = object.number(single, 0., JobObject::EXCLUDED);
    return NbgVector3D(length, length, length);
  }
  const std::vector<double> lengths =
      object.numbers(list, nDimensions, nDimensions, 0., JobObject::EXCLUDED);
  return NbgVector3D(lengths[0], lengths[1],
                     nDimensions > 2 ? lengths[2] : std::max(lengths[0], lengths[1]));
}

}  // namespace orvenal
