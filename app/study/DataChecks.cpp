#include "app/study/DataChecks.h"

#include "app/io/SpatialReference.h"
#include "app/study/ColumnGuess.h"
#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgBox.h"

#include <QObject>

#include <cmath>

namespace orvenal {

namespace {

QString textOf(const NbgBox &box, int nDimensions)
{
  const char *const axes[] = {"x", "y", "z"};
  QStringList parts;
  for (int axis = 0; axis < nDimensions; ++axis)
    parts << QObject::tr("%1 %2 to %3")
                 .arg(QLatin1String(axes[axis]),
                      QString::number(box.getLowerLeftCorner()[axis], 'g', 10),
                      QString::number(box.getUpperRightCorner()[axis], 'g', 10));
  return parts.join(QStringLiteral(", "));
}

NbgBox boxOf(const Samples &samples)
{
  NbgBox box;
  for (std::size_t i = 0; i < samples.x.size(); ++i)
    box.extendWith(NbgVector3D(samples.x[i], samples.y[i], 0.));
  return box;
}

bool isWithin(const NbgBox &box, double x, double y)
{
  const NbgVector3D low = box.getLowerLeftCorner();
  const NbgVector3D high = box.getUpperRightCorner();
  return low.x() >= -x && high.x() <= x && low.y() >= -y && high.y() <= y;
}

/// Some kilometres or hundreds of them on earth. A local grid begins near its origin, or has round
/// numbers of more digits.
bool liesLikeARegion(const NbgBox &box)
{
  constexpr double smallest = 1e-4;
  constexpr double largest = 8.;
  constexpr double share = 0.15;
  const double size = std::hypot(box.getSize().x(), box.getSize().y());
  const double distance = std::hypot(box.getCenter().x(), box.getCenter().y());
  return size > smallest && size < largest && size < share * distance;
}

QString whatDegreesMean()
{
  return QObject::tr(
      "a degree of longitude is shorter than one of latitude, and distances are measured as if "
      "they were equal");
}

QString degreesByLooks(const Job &job, const Samples &samples)
{
  constexpr double mostNorth = 90.;
  const NbgBox box = boxOf(samples);
  const bool isNamed = areNamedLikeDegrees(job.data.x, job.data.y);
  if (!box.isValid())
    return QString();
  if (isNamed && (isWithin(box, 360., mostNorth) || isWithin(box, mostNorth, 360.)))
    return QObject::tr("\"%1\" and \"%2\" look like degrees: %3")
        .arg(job.data.x, job.data.y, whatDegreesMean());
  if (isNamed || !isWithin(box, 180., mostNorth) || !liesLikeARegion(box))
    return QString();
  return QObject::tr(
             "the coordinates (%1) could be degrees; if they are: %2. If they are not, "
             "\"unit\" in \"data\" says so: \"m\"")
      .arg(textOf(box, 2), whatDegreesMean());
}

}  // namespace

QString DataChecks::gridMissesSamples(const Job &job, const Samples &samples)
{
  NbgBox around;
  for (std::size_t i = 0; i < samples.x.size(); ++i) {
    if (NbbGlobal::isDefined(samples.value[i]))
      around.extendWith(
          NbgVector3D(samples.x[i], samples.y[i], samples.z.empty() ? 0. : samples.z[i]));
  }
  NbgBox grid;
  job.grid.updateBoundingBox(grid);
  if (!around.isValid() || !grid.isValid() || around.intersects(grid))
    return QString();
  const int n = job.getNDimensions();
  return QObject::tr("the grid (%1) and the samples (%2) do not meet")
      .arg(textOf(grid, n), textOf(around, n));
}

QString DataChecks::seemsToBeDegrees(const Job &job, const Samples &samples)
{
  QString reason;
  const bool isGiven = !job.crs.isEmpty() || !job.lengthUnit.isEmpty();
  if (!isGiven)
    return degreesByLooks(job, samples);
  const bool areDegrees = job.crs.isEmpty()
                              ? job.lengthUnit.startsWith(QChar(0xB0)) ||
                                    job.lengthUnit.startsWith(QLatin1String("deg"))
                              : SpatialReference::parse(job.crs, reason).isGeographic();
  return areDegrees ? QObject::tr("the coordinates are degrees: %1").arg(whatDegreesMean())
                    : QString();
}

}  // namespace orvenal
