#include "app/report/ResultJson.h"

#include "app/job/ModelJson.h"
#include "app/report/Describe.h"
#include "app/report/StudyResult.h"
#include "app/report/Versions.h"
#include "app/study/Compass.h"
#include "basic/base/NbbGlobal.h"

#include <QFileInfo>

#include <cmath>

namespace orvenal {

namespace {

QString key(const char *name)
{
  return QLatin1String(name);
}

/// A text, or null for an empty one.
QJsonValue textOrNull(const QString &text)
{
  return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
}

QJsonObject dataToJson(const StudyResult &result)
{
  const Samples &samples = result.samples;
  const Job &job = result.job;
  return {{key("file"), job.data.file},
          {key("samples"), samples.getCount()},
          {key("defined"), samples.getCount() - samples.nUndefined},
          {key("undefined"), samples.nUndefined},
          {key("duplicates"), samples.nDuplicates},
          {key("merged"), samples.nMerged},
          {key("dimensions"), job.getNDimensions()},
          {key("crs"), textOrNull(job.crs)},
          {key("unit"), textOrNull(job.lengthUnit)}};
}

QJsonObject variableToJson(const JobVariable &variable)
{
  return {{key("name"), variable.name},
          {key("column"), variable.column},
          {key("transform"), transformNames()[int(variable.transform)]},
          {key("unit"), textOrNull(variable.unit)}};
}

QJsonObject curveToJson(const VariogramCurve &curve)
{
  QJsonArray lags;
  for (int lag = 0; lag < curve.distances.size(); ++lag)
    lags.append(QJsonObject({{key("distance"), jsonNumber(curve.distances[lag])},
                             {key("pairs"), curve.pairs[lag]},
                             {key("value"), jsonNumber(curve.values[lag])}}));
  QJsonObject object = {{key("name"), curve.name},
                        {key("azimuth"), QJsonValue::Null},
                        {key("dip"), QJsonValue::Null},
                        {key("lags"), lags}};
  if (!curve.isOmnidirectional) {
    object.insert(key("azimuth"), jsonNumber(Compass::azimuth(curve.direction)));
    object.insert(key("dip"), jsonNumber(Compass::dip(curve.direction)));
  }
  return object;
}

QJsonObject setToJson(const VariogramSet &set, const Job &job)
{
  QJsonArray directions;
  for (const VariogramCurve &curve : set.curves)
    directions.append(curveToJson(curve));
  QJsonArray variables = {job.getVariable(set.first).name};
  if (set.isCross())
    variables.append(job.getVariable(set.second).name);
  return {{key("variables"), variables},
          {key("sill"), set.hasSill ? jsonNumber(set.sill) : QJsonValue(QJsonValue::Null)},
          {key("directions"), directions}};
}

QJsonObject variogramToJson(const StudyResult &result)
{
  QJsonArray sets;
  for (const VariogramSet &set : result.variography.sets)
    sets.append(setToJson(set, result.job));
  return {{key("curve"), result.variography.curveName},
          {key("lag"), jsonNumber(result.variography.lag)},
          {key("curves"), sets}};
}

QJsonObject fitToJson(const ModelFit &fit)
{
  return {{key("converged"), fit.hasConverged}, {key("score"), jsonNumber(fit.score)}};
}

QJsonObject crossValidationToJson(const StudyResult &result)
{
  const CrossValidation &validation = result.crossValidation;
  const XValRes &means = validation.means;
  return {{key("samples"), result.samples.getCount()},
          {key("estimated"), validation.getNEstimated()},
          {key("failures"), validation.nFailures},
          {key("meanError"), jsonNumber(means.error)},
          {key("rootMeanSquaredError"), jsonNumber(means.rootSquaredError)},
          {key("meanStandardizedError"), jsonNumber(means.standardizedError)},
          {key("rootMeanSquaredStandardizedError"), jsonNumber(means.rootSquaredStandardizedError)},
          {key("meanDeviation"), jsonNumber(means.standardDeviation)}};
}

QJsonObject gridToJson(const Job &job)
{
  const int n = job.getNDimensions();
  const NbgIntVector3D nodes = job.grid.getNodesNumber();
  const NbgVector3D cell = job.grid.getCellSize();
  const NbgVector3D origin = job.grid.getOriginCentered();
  QJsonArray origins, cells, counts;
  for (int axis = 0; axis < n; ++axis) {
    origins.append(origin[axis]);
    cells.append(cell[axis]);
    counts.append(axis == 0 ? nodes.x() : axis == 1 ? nodes.y() : nodes.z());
  }
  return {{key("origin"), origins},
          {key("cell"), cells},
          {key("nodes"), counts},
          {key("rotation"), jsonNumber(Compass::azimuthOfRows(job.grid.getRotation()))}};
}

QJsonObject krigingToJson(const StudyResult &result)
{
  const Estimation &estimation = *result.estimation;
  const qint64 selected = estimation.grid.getNSelected();
  const qint64 estimated = estimation.grid.getNEstimated();
  return {{key("method"), Describe::method(result.job)},
          {key("grid"), gridToJson(result.job)},
          {key("nodes"), estimation.grid.geometry.getGridSize()},
          {key("selected"), selected},
          {key("estimated"), estimated},
          {key("tooFewSamples"), selected - estimated - estimation.nFailures},
          {key("failures"), estimation.nFailures},
          {key("threads"), estimation.threads}};
}

QJsonObject allStatistics(const StudyResult &result)
{
  QJsonObject object = {{key("samples"), statisticsToJson(result.sampleStatistics)}};
  QJsonArray covariates;
  for (int i = 1; i < result.variableStatistics.getNVariables(); ++i)
    covariates.append(statisticsToJson(result.variableStatistics.getConstUnivariateStats(i)));
  if (!covariates.isEmpty())
    object.insert(key("covariates"), covariates);
  if (result.estimation) {
    object.insert(key("estimate"), statisticsToJson(result.estimation->estimate));
    object.insert(key("deviation"), statisticsToJson(result.estimation->deviation));
  }
  return object;
}

QJsonArray timings(const StudyResult &result)
{
  QJsonArray list;
  for (const auto &step : result.seconds)
    list.append(QJsonObject({{key("step"), step.first}, {key("seconds"), step.second}}));
  return list;
}

/// What every study has.
QJsonObject commonResults(const StudyResult &result)
{
  const Job &job = result.job;
  QJsonArray covariates;
  for (const JobVariable &covariate : job.covariates)
    covariates.append(variableToJson(covariate));
  return {{key("job"), QJsonObject({{key("file"), job.file}, {key("title"), job.title}})},
          {key("data"), dataToJson(result)},
          {key("variable"), variableToJson(job.variable)},
          {key("covariates"), covariates},
          {key("statistics"), allStatistics(result)},
          {key("files"), QJsonArray::fromStringList(job.output.getFiles())},
          {key("warnings"), QJsonArray::fromStringList(result.warnings)},
          {key("timings"), timings(result)},
          {key("versions"), versionsToJson()}};
}

}  // namespace

QJsonObject resultToJson(const StudyResult &result)
{
  QJsonObject object = commonResults(result);
  if (!result.variography.isEmpty())
    object.insert(key("variogram"), variogramToJson(result));
  if (result.job.hasModel)
    object.insert(key("model"), modelToJson(result.job.model, result.job.getNDimensions()));
  if (result.fit)
    object.insert(key("fit"), fitToJson(*result.fit));
  if (!result.crossValidation.isEmpty())
    object.insert(key("crossValidation"), crossValidationToJson(result));
  if (result.estimation)
    object.insert(key("kriging"), krigingToJson(result));
  return object;
}

QJsonValue jsonNumber(double value)
{
  return NbbGlobal::isDefined(value) && std::isfinite(value) ? QJsonValue(value)
                                                             : QJsonValue(QJsonValue::Null);
}

QJsonObject statisticsToJson(const NbcStatMono &statistics)
{
  return {{key("count"), statistics.getNTotal()},
          {key("defined"), statistics.getNDefined()},
          {key("undefined"), statistics.getNTotal() - statistics.getNDefined()},
          {key("minimum"), jsonNumber(statistics.getMinimum())},
          {key("maximum"), jsonNumber(statistics.getMaximum())},
          {key("mean"), jsonNumber(statistics.getMean())},
          {key("standardDeviation"), jsonNumber(statistics.getStandardDeviation())},
          {key("skewness"), jsonNumber(statistics.getSkewness())},
          {key("kurtosis"), jsonNumber(statistics.getKurtosis())}};
}

QJsonObject versionsToJson()
{
  QJsonObject versions;
  for (const auto &version : allVersions())
    versions.insert(version.first, version.second);
  return versions;
}

}  // namespace orvenal
