#include "app/job/NeighborhoodReader.h"

#include "app/job/AxesReader.h"
#include "app/job/JobObject.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"

#include <QObject>

#include <limits>

namespace orvenal {

namespace {

constexpr int mostSamples = 10000;
constexpr int mostSectors = 360;

void refuseKeysOfMoving(const JobObject &object)
{
  for (const QString &key : neighborhoodKeys()) {
    if (key != QLatin1String("type") && object.has(key))
      object.fail(key, QObject::tr("has no meaning in a unique neighborhood, where every node uses "
                                   "all samples"));
  }
}

/// `maximum` samples in all; each sector takes its share of them, rounded up, unless the job says
/// how many.
void readNumbers(const JobObject &object, NgmNeighborhoodMoving &moving)
{
  const int maximum = object.integer(QStringLiteral("maximum"), 1, mostSamples);
  const int sectors = object.has(QStringLiteral("sectors"))
                          ? object.integer(QStringLiteral("sectors"), 1, mostSectors)
                          : 1;
  const bool split = object.flag(QStringLiteral("split"), false);
  const int parts = split ? 2 * sectors : sectors;
  const int perSector = object.has(QStringLiteral("perSector"))
                            ? object.integer(QStringLiteral("perSector"), 1, mostSamples)
                            : (maximum + parts - 1) / parts;
  moving.setSectors(sectors, perSector, split);
  moving.setRuleMaximumNumber(true, maximum);
  const int minimum = object.has(QStringLiteral("minimum"))
                          ? object.integer(QStringLiteral("minimum"), 1, mostSamples)
                          : 1;
  if (minimum > maximum)
    object.fail(QStringLiteral("minimum"),
                QObject::tr("%1 is more than the maximum, %2").arg(minimum).arg(maximum));
  moving.setRuleMinimumNumber(true, minimum);
}

}  // namespace

QStringList neighborhoodKeys()
{
  return QStringList{QStringLiteral("type"),    QStringLiteral("radius"),
                     QStringLiteral("radii"),   QStringLiteral("maximum"),
                     QStringLiteral("minimum"), QStringLiteral("sectors"),
                     QStringLiteral("split"),   QStringLiteral("perSector")} +
         angleKeys();
}

std::optional<NgmNeighborhoodMoving> readNeighborhood(const JobObject &object, int nDimensions)
{
  const QString moving = QStringLiteral("moving");
  const QString unique = QStringLiteral("unique");
  object.text(QStringLiteral("type"));
  if (object.choice(QStringLiteral("type"), {moving, unique}, moving) == unique) {
    refuseKeysOfMoving(object);
    return std::nullopt;
  }
  NgmNeighborhoodMoving parameters;
  const NbgVector3D radii =
      readLengths(object, QStringLiteral("radius"), QStringLiteral("radii"), nDimensions);
  parameters.setEllipseSize(radii);
  parameters.setEllipseRotation(readFrame(object, nDimensions, radii.x() != radii.y()));
  readNumbers(object, parameters);
  QStringList errors;
  QStringList warnings;
  if (!parameters.checkParameters(nDimensions, errors, warnings))
    object.fail(errors.first().mid(2).trimmed());
  return parameters;
}

}  // namespace orvenal
