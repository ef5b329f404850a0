#include "app/io/OutputReader.h"

#include "app/io/JobObject.h"
#include "app/study/Job.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>

namespace orvenal {

namespace {

/// The absolute path of an output; its ending must be among the given ones.
QString readOutputFile(const JobObject &object, const QString &path, const QString &name,
                       const QDir &folder, const QStringList &endings)
{
  const QString ending = QFileInfo(name).suffix().toLower();
  if (!endings.contains(ending))
    object.fail(path, QObject::tr("\"%1\" should end with %2")
                          .arg(name, '.' + endings.join(QObject::tr(" or ."))));
  return QDir::cleanPath(folder.absoluteFilePath(name));
}

QStringList pictureEndings()
{
  return {key("png"), key("svg")};
}

QString readMap(const JobObject &maps, const QString &name, const QDir &folder, int nDimensions)
{
  if (!maps.has(name))
    return QString();
  if (nDimensions > 2)
    maps.fail(name, QObject::tr("a map needs a grid of two dimensions"));
  return readOutputFile(maps, name, maps.text(name), folder, pictureEndings());
}

QStringList readGridFiles(const JobObject &object, const QDir &folder, int nDimensions)
{
  QStringList files;
  for (const QString &name : object.texts(key("grid"))) {
    const QString path = QStringLiteral("grid[%1]").arg(files.size());
    files << readOutputFile(object, path, name, folder, {key("csv"), key("tif"), key("tiff")});
    if (nDimensions > 2 && !files.last().endsWith(QLatin1String(".csv"), Qt::CaseInsensitive))
      object.fail(path, QObject::tr("a GeoTIFF needs a grid of two dimensions"));
  }
  return files;
}

/// A member that needs another part of the job.
void require(bool isThere, const JobObject &object, const QString &name, const char *part)
{
  if (object.has(name) && !isThere)
    object.fail(name, QObject::tr("the job has no \"%1\" of which this could be written")
                          .arg(QLatin1String(part)));
}

void readKrigingFiles(const JobObject &object, const QDir &folder, const Job &job,
                      JobOutput &output)
{
  require(job.hasGrid, object, key("grid"), "grid");
  require(job.hasGrid, object, key("maps"), "grid");
  if (object.has(key("grid")))
    output.grids = readGridFiles(object, folder, job.getNDimensions());
  if (!object.has(key("maps")))
    return;
  const JobObject maps = object.object(key("maps"), {key("estimate"), key("deviation")});
  output.estimateMap = readMap(maps, key("estimate"), folder, job.getNDimensions());
  output.deviationMap = readMap(maps, key("deviation"), folder, job.getNDimensions());
}

/// Files of a step by their keys, each with its endings and its place.
struct StepFile
{
  const char *name;
  QStringList endings;
  QString *path;
};

void readStepFiles(const JobObject &object, const char *step, bool isThere, const QDir &folder,
                   const QList<StepFile> &files)
{
  require(isThere, object, key(step), step);
  if (!object.has(key(step)))
    return;
  QStringList names;
  for (const StepFile &file : files)
    names << key(file.name);
  const JobObject given = object.object(key(step), names);
  for (const StepFile &file : files) {
    if (given.has(key(file.name)))
      *file.path =
          readOutputFile(given, key(file.name), given.text(key(file.name)), folder, file.endings);
  }
}

void readVariogramFiles(const JobObject &object, const QDir &folder, const Job &job,
                        JobOutput &output)
{
  readStepFiles(object, "variogram", job.variogram.has_value(), folder,
                {{"table", {key("csv")}, &output.variogramTable},
                 {"picture", pictureEndings(), &output.variogramPicture},
                 {"map", pictureEndings(), &output.variogramMap},
                 {"cloud", pictureEndings(), &output.variogramCloud}});
  if (!output.variogramMap.isEmpty() && job.getNDimensions() > 2)
    object.fail(key("variogram.map"), QObject::tr("a map needs samples of two dimensions"));
}

/// The path by which two names of one file are equal, whether it exists or not.
QString identityOf(const QString &path)
{
  const QFileInfo file(path);
  if (file.exists())
    return file.canonicalFilePath();
  const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
  return folder.isEmpty() ? QDir::cleanPath(path) : folder + '/' + file.fileName();
}

void checkOutputs(const JobObject &root, const Job &job)
{
  QStringList inputs = {identityOf(job.file), identityOf(job.data.file)};
  if (!job.modelFile.isEmpty())
    inputs << identityOf(job.modelFile);
  for (const std::optional<JobTable> &table : {job.mask, job.gridValues, job.faults}) {
    if (table)
      inputs << identityOf(table->file);
  }
  QStringList outputs;
  for (const QString &file : job.output.getFiles()) {
    const QString identity = identityOf(file);
    if (inputs.contains(identity))
      root.fail(key("output"),
                QObject::tr("\"%1\" is an input of the job and would be overwritten").arg(file));
    if (outputs.contains(identity))
      root.fail(key("output"), QObject::tr("\"%1\" would be written twice").arg(file));
    outputs << identity;
  }
}

}  // namespace

void readOutput(const JobObject &root, const QDir &jobFolder, Job &job)
{
  if (!root.has(key("output")))
    return;
  const JobObject object = root.object(
      key("output"), {key("directory"), key("grid"), key("maps"), key("fit"), key("variogram"),
                      key("crossValidation"), key("report"), key("results")});
  const QDir folder(jobFolder.absoluteFilePath(object.text(key("directory"), key("."))));
  JobOutput &output = job.output;
  readKrigingFiles(object, folder, job, output);
  readVariogramFiles(object, folder, job, output);
  readStepFiles(object, "fit", job.fit.has_value(), folder,
                {{"model", {key("json")}, &output.fittedModel}});
  readStepFiles(object, "crossValidation", job.crossValidation.has_value(), folder,
                {{"table", {key("csv")}, &output.crossValidationTable},
                 {"picture", pictureEndings(), &output.crossValidationPicture}});
  if (object.has(key("report")))
    output.report = readOutputFile(object, key("report"), object.text(key("report")), folder,
                                   {key("html"), key("htm")});
  if (object.has(key("results")))
    output.results =
        readOutputFile(object, key("results"), object.text(key("results")), folder, {key("json")});
  checkOutputs(root, job);
}

}  // namespace orvenal
