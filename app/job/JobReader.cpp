#include "app/job/JobReader.h"

#include "app/base/PathText.h"
#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/io/InputFile.h"
#include "app/job/DataReader.h"
#include "app/job/GridReader.h"
#include "app/job/JobObject.h"
#include "app/job/JobText.h"
#include "app/job/KrigingReader.h"
#include "app/job/ModelFile.h"
#include "app/job/ModelReader.h"
#include "app/job/NeighborhoodReader.h"
#include "app/job/OutputReader.h"
#include "app/job/VariogramReader.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>
#include <QRegularExpression>

namespace orvenal {

namespace {

void readResources(const JobObject &root, Job &job)
{
  if (root.has(key("threads")))
    job.threads = root.integer(key("threads"), 1, 1024);
  if (!root.has(key("memory")))
    return;
  job.memory = parseMemorySize(root.text(key("memory")));
  if (job.memory <= 0)
    root.fail(key("memory"),
              QObject::tr("expected a size such as \"500 MB\" or \"2 GB\" (KB to TB)"));
}

CrossValidationRequest readCrossValidation(const JobObject &object)
{
  const QStringList kinds = {key("sample"), key("line"), key("ball")};
  CrossValidationRequest request;
  request.leaveOut = CrossValidationRequest::LeaveOut(
      kinds.indexOf(object.choice(key("leaveOut"), kinds, kinds.first())));
  if (request.leaveOut == CrossValidationRequest::LINE)
    request.line = object.text(key("line"));
  else if (object.has(key("line")))
    object.fail(key("line"), QObject::tr("has a meaning when lines are left out"));
  if (request.leaveOut == CrossValidationRequest::BALL)
    request.radius = object.number(key("radius"), 0., JobObject::EXCLUDED);
  else if (object.has(key("radius")))
    object.fail(key("radius"), QObject::tr("has a meaning when balls are left out"));
  return request;
}

void checkGridColumns(const JobObject &root, const Job &job)
{
  QStringList columns;
  for (const Column &column : job.kriging.getGridColumns())
    columns << column.column;
  if (job.hasGrid && !columns.isEmpty() && !job.gridValues)
    root.fail(QStringLiteral("grid.values"),
              QObject::tr("missing; it is the table of nodes with the columns %1")
                  .arg(quotedList(columns)));
}

void readFaults(const JobObject &object, const QDir &folder, Job &job)
{
  if (!object.has(key("faults")))
    return;
  const JobObject faults =
      object.object(key("faults"), tableKeys() << key("line") << key("inside"));
  job.faults = readTable(faults, folder);
  job.faultLine = faults.text(key("line"));
  const QStringList inside = {key("estimate"), key("leave")};
  job.estimatesInsideFaults =
      faults.choice(key("inside"), inside, inside.first()) == inside.first();
}

/// The model of the job, or that of a file of its own.
NgmVModel readModelOf(const JobObject &root, const QDir &folder, Job &job)
{
  const JobObject object = root.object(key("model"), modelKeys() << key("file"));
  if (!object.has(key("file")))
    return readModel(object, job.getNDimensions(), job.getNVariables());
  for (const QString &part : modelKeys()) {
    if (object.has(part))
      object.fail(part, QObject::tr("the model is that of \"file\""));
  }
  job.modelFile = findInput(object, key("file"), folder);
  return readModelFile(job.modelFile, shownPath(job.modelFile), job.getNDimensions(),
                       job.getNVariables());
}

void readFitOf(const JobObject &root, Job &job)
{
  const QString name = key("fit");
  if (!root.has(name))
    return;
  if (root.has(key("model")))
    root.fail(name, QObject::tr("the job has a \"model\"; give one of both"));
  if (!job.variogram)
    root.fail(name, QObject::tr("needs \"variogram\", to which the model is fitted"));
  if (job.variogram->curve != NgmEVarioExp::VARIOGRAM)
    root.fail(key("variogram.curve"), QObject::tr("a model is fitted to a \"Variogram\""));
  job.fit = readFit(root.object(name, fitKeys()));
}

/// What kriging asks of the neighborhood.
void checkSearch(const JobObject &root, const Job &job)
{
  const bool isLocal = job.kriging.localAzimuth || job.kriging.localFactor;
  if (isLocal && !job.neighborhood)
    root.fail(key("kriging.local"), QObject::tr("needs a moving neighborhood"));
  const bool hasLines = job.neighborhood && !job.neighborhood->line.isEmpty();
  for (const ExtraOutput &extra : job.kriging.extras) {
    if (extra.key == key("lines") && !hasLines)
      root.fail(key("kriging.extra"),
                QObject::tr("\"%1\" needs \"%2\"").arg(extra.key, key("neighborhood.lines")));
  }
}

/// A model without a sill has no covariances.
void checkUnbounded(const JobObject &root, const Job &job)
{
  if (!job.hasModel || job.model.isStrictStationary())
    return;
  const KrigingRequest &kriging = job.kriging;
  if (kriging.mode == KrigingRequest::SIMPLE || kriging.mode == KrigingRequest::RESCALED)
    root.fail(key("kriging.mode"), QObject::tr("the model has no sill: a mean that is known, or "
                                               "weights of one sum, need one"));
  const QStringList ofCovariances = {key("varianceOfEstimate"), key("covariance"),
                                     key("correlation"), key("slope"), key("efficiency")};
  for (const ExtraOutput &extra : kriging.extras) {
    if (ofCovariances.contains(extra.key))
      root.fail(key("kriging.extra"),
                QObject::tr("\"%1\" needs a model with a sill").arg(extra.key));
  }
}

/// Variant of kriging and neighborhood, for the grid and for cross-validation.
void readKrigingParts(const JobObject &root, const QDir &folder, Job &job)
{
  if (root.has(key("crossValidation")))
    job.crossValidation = readCrossValidation(
        root.object(key("crossValidation"), {key("leaveOut"), key("line"), key("radius")}));
  const bool isKriged = job.hasGrid || job.crossValidation;
  readFitOf(root, job);
  if (!job.fit && (isKriged || root.has(key("model")))) {
    job.model = readModelOf(root, folder, job);
    job.hasModel = true;
  }
  for (const QString &part : {key("kriging"), key("neighborhood")}) {
    if (!isKriged && root.has(part))
      root.fail(part, QObject::tr("the job has no \"grid\" to estimate and no "
                                  "\"crossValidation\""));
  }
  if (!isKriged)
    return;
  if (root.has(key("kriging"))) {
    const JobObject object = root.object(key("kriging"), krigingKeys());
    job.kriging =
        readKriging(object, job.getNDimensions(), job.getNVariables(), job.model.getNStructures());
    readFaults(object, folder, job);
  }
  checkGridColumns(root, job);
  job.neighborhood = readNeighborhood(root.object(key("neighborhood"), neighborhoodKeys()),
                                      job.getNDimensions(), job.getNVariables());
  checkSearch(root, job);
  checkUnbounded(root, job);
}

/// What is to be done: variograms, cross-validation, kriging, or nothing but statistics.
void readSteps(const JobObject &root, const QDir &folder, Job &job)
{
  if (root.has(key("variogram")))
    job.variogram =
        readVariogram(root.object(key("variogram"), variogramKeys()), job.getNDimensions());
  if (root.has(key("grid")))
    readGrid(root, folder, job);
  readKrigingParts(root, folder, job);
}

}  // namespace

Job readJob(const QString &path)
{
  return parseJob(path, readJobText(path));
}

Job parseJob(const QString &path, const QByteArray &text)
{
  Job job;
  job.file = QFileInfo(path).absoluteFilePath();
  job.text = text;
  JobObject root = JobObject::parse(
      path, job.text,
      {key("title"), key("data"), key("variable"), key("covariates"), key("variogram"), key("fit"),
       key("grid"), key("model"), key("kriging"), key("neighborhood"), key("crossValidation"),
       key("conventions"), key("output"), key("threads"), key("memory")});
  root.readConventions();
  const QDir folder = QFileInfo(job.file).absoluteDir();
  job.title = root.text(key("title"), QFileInfo(path).completeBaseName());
  readData(root, folder, job);
  readVariables(root, job);
  readSteps(root, folder, job);
  readOutput(root, folder, job);
  readResources(root, job);
  return job;
}

QByteArray readJobText(const QString &path)
{
  constexpr qint64 largestJob = 16 << 20;
  QFile file(path);
  if (QFileInfo(path).isDir() || !QFileInfo::exists(path))
    throw UsageError(inputFileProblem(path, path));
  if (!file.open(QIODevice::ReadOnly))
    throw UsageError(QObject::tr("%1: cannot be read: %2").arg(path, file.errorString()));
  const QByteArray text = file.read(largestJob + 1);
  if (text.size() > largestJob)
    throw UsageError(QObject::tr("%1: larger than 16 MB; this is not a job").arg(path));
  return text;
}

QJsonObject parseJobRoot(const QString &path, const QByteArray &text)
{
  const QJsonValue root = parseJobText(path, text).root;
  if (!root.isObject())
    throw UsageError(QObject::tr("%1: a job is a JSON object, { ... }").arg(path));
  return root.toObject();
}

qint64 parseMemorySize(const QString &text)
{
  static const QRegularExpression pattern(
      QStringLiteral("^\\s*(\\d{1,12}(?:\\.\\d{1,6})?)\\s*([KMGT])(?:i?B)?\\s*$"),
      QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = pattern.match(text);
  if (!match.hasMatch())
    return -1;
  const int power = QStringLiteral("KMGT").indexOf(match.captured(2).toUpper()) + 1;
  const double bytes = match.captured(1).toDouble() * double(Q_INT64_C(1) << (10 * power));
  constexpr double most = 1e18;
  return bytes <= most ? qint64(bytes) : -1;
}

}  // namespace orvenal
