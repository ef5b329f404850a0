#include "interpol/private/NgcKrigingErrors.h"

#include "basic/geom/NbgVector3D.h"
#include "geos/NgcEnumGlobal.h"

#include <QObject>

namespace {

QString locationText(const NbgVector3D &target)
{
  return QObject::tr("Target location: X = ") + QString::number(target.x()) +
         QObject::tr(", Y = ") + QString::number(target.y()) + QObject::tr(", Z = ") +
         QString::number(target.z());
}

}  // namespace

QString NgcKrigingErrors::undefinedDrift(const NbgVector3D &target)
{
  return QObject::tr("Known Drifts are undefined.\n") + locationText(target);
}

QString NgcKrigingErrors::undefinedModel(const NbgVector3D &target)
{
  return NgcENeighborhoodErrorCode::NEIGH_UNDEF_LGS.getLabel() + QLatin1Char('\n') +
         locationText(target);
}

QString NgcKrigingErrors::unsolvedSystem(const QString &driftError, const NbgVector3D &target)
{
  if (driftError.isEmpty())
    return QObject::tr("Kriging system resolution error.\n") + locationText(target);
  return driftError + locationText(target);
}

QString NgcKrigingErrors::unsolvedCompanion(const NbgVector3D &target)
{
  return QObject::tr(
             "Simple Kriging system resolution error. The weight of meancan't be "
             "computed\n") +
         locationText(target) + QLatin1Char('\n') +
         QObject::tr("Note: The ordinary kriging succeed !");
}
