#include "app/study/KrigingRequest.h"

#include "basic/data/Nbd.h"
#include "geos/interpol/NgcAKriging.h"

#include <QObject>

namespace orvenal {

namespace {

QList<Column> distinct(const QList<Column> &columns)
{
  QList<Column> result;
  for (const Column &column : columns) {
    if (!result.contains(column))
      result << column;
  }
  return result;
}

}  // namespace

QList<Column> KrigingRequest::getSampleColumns() const
{
  QList<Column> columns = localMeans + externalDrifts;
  if (measurementError)
    columns << *measurementError;
  return distinct(columns);
}

QList<Column> KrigingRequest::getGridColumns() const
{
  QList<Column> columns = localMeans + externalDrifts + collocated;
  for (const std::optional<Column> &column : {localAzimuth, localFactor}) {
    if (column)
      columns << *column;
  }
  return distinct(columns);
}

QString constantErrorName()
{
  return QStringLiteral("measurement error");
}

bool KrigingRequest::isFiltering() const
{
  return filterNugget || filterDrift || !filteredStructures.isEmpty();
}

const QList<ExtraOutput> &extraOutputs()
{
  static const QList<ExtraOutput> all = {
      {"varianceOfEstimate", Nbd::Role::VAR_ESTIMATE, QObject::tr("Variance of the estimate")},
      {"covariance", Nbd::Role::COVAR_ZZSTAR, QObject::tr("Covariance of value and estimate")},
      {"correlation", Nbd::Role::CORREL_ZZSTAR, QObject::tr("Correlation of value and estimate")},
      {"slope", Nbd::Role::SLOPE_ZZSTAR, QObject::tr("Slope of the value on the estimate")},
      {"efficiency", Nbd::Role::KRIG_EFFIC, QObject::tr("Kriging efficiency")},
      {"sumOfWeights", Nbd::Role::SUM_W, QObject::tr("Sum of weights")},
      {"sumOfPositiveWeights", Nbd::Role::SUM_POS_W, QObject::tr("Sum of positive weights")},
      {"weightOfMean", Nbd::Role::WEIGHT_OF_MEAN, QObject::tr("Weight of the mean")},
      {"lagrange", Nbd::Role::LAGRANGE, QObject::tr("Lagrange multiplier")},
      {"neighbors", Nbd::Role::NEIGH_NUMBER, QObject::tr("Number of neighbors")},
      {"blockVariance", NgcAKriging::getRoleSSDV(),
       QObject::tr("Kriging variance times the block's volume")},
      {"specificVolume", NgcAKriging::getRoleSpecificVolume(), QObject::tr("Specific volume")},
      {"coefficientOfVariation", NgcAKriging::getRoleCoeffOfVariation(),
       QObject::tr("Coefficient of variation of the production volume")},
      {"lines", Nbd::Role::NEIGH_CODE_NUMBER, QObject::tr("Number of lines")},
      {"pass", Nbd::Role::NEIGH_SEARCH_INDEX, QObject::tr("Search pass")},
      {"meanDistance", Nbd::Role::NEIGH_MEAN_DIST, QObject::tr("Mean distance of the neighbors")},
  };
  return all;
}

}  // namespace orvenal
