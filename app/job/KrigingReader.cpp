#include "app/job/KrigingReader.h"

#include "app/base/Suggestion.h"
#include "app/job/JobObject.h"

#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

bool knowsMean(const KrigingRequest &request)
{
  return request.mode == KrigingRequest::SIMPLE || request.mode == KrigingRequest::RESCALED;
}

void refuse(bool isWrong, const JobObject &object, const char *name, const QString &reason)
{
  if (isWrong && object.has(key(name)))
    object.fail(key(name), reason);
}

QList<Column> readColumns(const JobObject &object, const char *name)
{
  QList<Column> columns;
  if (object.has(key(name))) {
    for (const JobObject &column : object.objects(key(name), columnKeys()))
      columns << readColumn(column);
  }
  return columns;
}

/// A list of columns with one for each of `count` things, or none.
QList<Column> readColumns(const JobObject &object, const char *name, int count,
                          const QString &things)
{
  const QList<Column> columns = readColumns(object, name);
  if (object.has(key(name)) && columns.size() != count)
    object.fail(key(name),
                QObject::tr("expected %1 columns (one per %2), found %3")
                    .arg(QString::number(count), things, QString::number(columns.size())));
  return columns;
}

void readMeans(const JobObject &object, int nVariables, KrigingRequest &request)
{
  const QString reason = QObject::tr("means are known in simple and rescaled kriging only");
  refuse(!knowsMean(request), object, "means", reason);
  refuse(!knowsMean(request), object, "localMeans", reason);
  refuse(object.has(key("means")), object, "localMeans",
         QObject::tr("give \"means\" or \"localMeans\", not both"));
  request.localMeans = readColumns(object, "localMeans", nVariables, QObject::tr("variable"));
  if (object.has(key("means")))
    request.means = object.numbers(key("means"), nVariables, nVariables);
  if (request.mode == KrigingRequest::SIMPLE && request.means.empty() &&
      request.localMeans.isEmpty())
    object.fail(key("means"), QObject::tr("missing; simple kriging knows the means (or "
                                          "\"localMeans\")"));
}

void readDrift(const JobObject &object, KrigingRequest &request)
{
  const bool hasDrift = request.mode == KrigingRequest::DRIFT;
  const QString reason = QObject::tr("needs the mode \"drift\"");
  refuse(!hasDrift, object, "degree", reason);
  refuse(!hasDrift, object, "externalDrifts", reason);
  if (!hasDrift)
    return;
  if (object.has(key("degree")))
    request.driftDegree = object.integer(key("degree"), 1, 2);
  if (object.has(key("externalDrifts")))
    request.externalDrifts = readColumns(object, "externalDrifts");
  if (request.driftDegree == 0 && request.externalDrifts.isEmpty())
    object.fail(key("mode"), QObject::tr("a drift has a \"degree\" or \"externalDrifts\""));
}

void readBlock(const JobObject &object, int nDimensions, KrigingRequest &request)
{
  if (!object.has(key("block")))
    return;
  constexpr int mostPoints = 100;
  const std::vector<int> n = object.integers(key("block"), nDimensions, nDimensions, 1, mostPoints);
  request.block = NbgIntVector3D(n[0], n[1], nDimensions > 2 ? n[2] : 1);
  refuse(!request.externalDrifts.isEmpty(), object, "block",
         QObject::tr("external drifts are known at points only"));
}

void readFilter(const JobObject &object, int nStructures, KrigingRequest &request)
{
  if (!object.has(key("filter")))
    return;
  const JobObject filter =
      object.object(key("filter"), {key("nugget"), key("structures"), key("drift")});
  request.filterNugget = filter.flag(key("nugget"), false);
  request.filterDrift = filter.flag(key("drift"), false);
  if (filter.has(key("structures"))) {
    for (const int structure :
         filter.integers(key("structures"), 1, std::max(1, nStructures), 1, nStructures))
      request.filteredStructures << structure - 1;
  }
  if (!request.isFiltering())
    object.fail(key("filter"), QObject::tr("nothing is filtered"));
}

void readCollocated(const JobObject &object, int nVariables, KrigingRequest &request)
{
  refuse(nVariables == 1, object, "collocated", QObject::tr("the job has no \"covariates\""));
  refuse(request.block.has_value() || request.isFiltering(), object, "collocated",
         QObject::tr("not possible with blocks or a filter"));
  request.collocated = readColumns(object, "collocated", nVariables - 1, QObject::tr("covariate"));
}

void readMeasurementError(const JobObject &object, KrigingRequest &request)
{
  if (!object.has(key("measurementError")))
    return;
  if (object.isNumber(key("measurementError")))
    request.constantError = object.number(key("measurementError"), 0.);
  else
    request.measurementError = Column{object.text(key("measurementError"))};
}

void readSuperKriging(const JobObject &object, KrigingRequest &request)
{
  const QString name = key("superKriging");
  if (!object.has(name))
    return;
  if (!request.block)
    object.fail(name, QObject::tr("needs \"block\""));
  const JobObject values = object.object(name, {key("production"), key("mean")});
  request.productionVolume = values.number(key("production"), 0., JobObject::EXCLUDED);
  request.theoreticalMean = values.number(key("mean"), 0., JobObject::EXCLUDED);
}

void readLocal(const JobObject &object, int nDimensions, KrigingRequest &request)
{
  const QString name = key("local");
  if (!object.has(name))
    return;
  if (nDimensions > 2)
    object.fail(name, QObject::tr("needs a grid of two dimensions"));
  const JobObject local = object.object(name, {key("azimuth"), key("factor")});
  if (local.has(key("azimuth")))
    request.localAzimuth = Column{local.text(key("azimuth"))};
  request.localAngles = object.getConventions().angles;
  if (local.has(key("factor")))
    request.localFactor = Column{local.text(key("factor"))};
  if (!request.localAzimuth && !request.localFactor)
    object.fail(name, QObject::tr("give \"azimuth\" or \"factor\""));
}

/// Some results belong to super kriging.
void checkExtra(const JobObject &object, const ExtraOutput &extra, const KrigingRequest &request)
{
  const QStringList ofSuperKriging = {key("blockVariance"), key("specificVolume"),
                                      key("coefficientOfVariation")};
  if (ofSuperKriging.contains(extra.key) && request.productionVolume == 0.)
    object.fail(key("extra"), QObject::tr("\"%1\" needs \"superKriging\"").arg(extra.key));
}

void readExtras(const JobObject &object, KrigingRequest &request)
{
  if (!object.has(key("extra")))
    return;
  QStringList keys;
  for (const ExtraOutput &extra : extraOutputs())
    keys << extra.key;
  for (const QString &name : object.texts(key("extra"))) {
    const int index = keys.indexOf(name);
    if (index < 0)
      object.fail(key("extra"), QObject::tr("\"%1\" is not known%2; allowed: %3")
                                    .arg(name, didYouMean(name, keys), quotedList(keys)));
    checkExtra(object, extraOutputs()[index], request);
    request.extras << extraOutputs()[index];
  }
}

}  // namespace

QStringList columnKeys()
{
  return {key("column"), key("transform")};
}

Column readColumn(const JobObject &object)
{
  Column column;
  column.column = object.text(key("column"));
  column.transform = Transform(transformNames().indexOf(
      object.choice(key("transform"), transformNames(), transformNames().first())));
  return column;
}

QStringList krigingModes()
{
  return {key("ordinary"), key("simple"), key("drift"), key("rescaled")};
}

QStringList krigingKeys()
{
  return {key("mode"),   key("means"),        key("localMeans"),       key("degree"),
          key("block"),  key("superKriging"), key("measurementError"), key("collocated"),
          key("filter"), key("faults"),       key("externalDrifts"),   key("local"),
          key("extra")};
}

KrigingRequest readKriging(const JobObject &object, int nDimensions, int nVariables,
                           int nStructures)
{
  KrigingRequest request;
  request.mode = KrigingRequest::Mode(
      krigingModes().indexOf(object.choice(key("mode"), krigingModes(), krigingModes().first())));
  if (request.mode == KrigingRequest::RESCALED && nVariables == 1)
    object.fail(key("mode"), QObject::tr("rescaled cokriging needs \"covariates\""));
  readMeans(object, nVariables, request);
  readDrift(object, request);
  readBlock(object, nDimensions, request);
  readMeasurementError(object, request);
  readFilter(object, nStructures, request);
  readCollocated(object, nVariables, request);
  readSuperKriging(object, request);
  readLocal(object, nDimensions, request);
  readExtras(object, request);
  return request;
}

}  // namespace orvenal
