#include "app/study/DataChecks.h"

#include "app/study/Job.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgBox.h"

#include <QObject>

#include <algorithm>
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

bool isNamedLike(const QString &column, const QStringList &names)
{
  const QString name = column.trimmed().toLower();
  return std::any_of(names.begin(), names.end(), [&](const QString &known) {
    return name == known || name.startsWith(known + '_') || name.endsWith('_' + known);
  });
}

bool areWithin(const std::vector<double> &values, double limit)
{
  return std::all_of(values.begin(), values.end(),
                     [limit](double value) { return std::abs(value) <= limit; });
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

QString DataChecks::looksLikeDegrees(const Job &job, const Samples &samples)
{
  const QStringList longitudes = {QStringLiteral("lon"), QStringLiteral("long"),
                                  QStringLiteral("lng"), QStringLiteral("longitude")};
  const QStringList latitudes = {QStringLiteral("lat"), QStringLiteral("latitude")};
  if (!job.crs.isEmpty() || !isNamedLike(job.data.x, longitudes) ||
      !isNamedLike(job.data.y, latitudes) || !areWithin(samples.x, 360.) ||
      !areWithin(samples.y, 90.))
    return QString();
  return QObject::tr(
             "\"%1\" and \"%2\" look like degrees: a degree of longitude is shorter than "
             "one of latitude, and distances are measured as if they were equal")
      .arg(job.data.x, job.data.y);
}

}  // namespace orvenal
