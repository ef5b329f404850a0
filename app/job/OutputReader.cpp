#include "app/job/OutputReader.h"

#include "app/base/PathText.h"
#include "app/io/GridWriter.h"
#include "app/job/JobObject.h"
#include "app/job/ModelFile.h"
#include "app/study/Job.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>

#include <algorithm>

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

QString readMap(const JobObject &maps, const QString &name, const QDir &folder)
{
  if (!maps.has(name))
    return QString();
  return readOutputFile(maps, name, maps.text(name), folder, pictureEndings());
}

SectionRequest readSection(const JobObject &object, const NbgGeomGrid &grid)
{
  QStringList axes = {key("x"), key("y"), key("z")};
  axes.erase(std::remove_if(axes.begin(), axes.end(),
                            [&](const QString &axis) { return !object.has(axis); }),
             axes.end());
  if (axes.size() != 1)
    object.fail(
        QObject::tr("expected one of \"x\", \"y\" and \"z\", the coordinate of the section"));
  SectionRequest section;
  const QString axis = axes.first();
  section.axis = axis[0].unicode() - 'x';
  section.coordinate = object.number(axis);
  if (findLayer(grid, section.axis, section.coordinate) < 0) {
    const auto [first, last] = gridReach(grid, section.axis);
    object.fail(axis, QObject::tr("outside the grid, which reaches from %1 to %2")
                          .arg(QString::number(first, 'g', 12), QString::number(last, 'g', 12)));
  }
  if (object.has(key("distance")))
    section.distance = object.number(key("distance"), 0.);
  return section;
}

QList<SectionRequest> readSections(const JobObject &maps, const NbgGeomGrid &grid)
{
  constexpr int most = 24;
  const QString name = key("sections");
  QList<SectionRequest> sections;
  if (!maps.has(name))
    return sections;
  if (grid.is2D())
    maps.fail(name, QObject::tr("sections need a grid of three dimensions"));
  for (const JobObject &object :
       maps.objects(name, {key("x"), key("y"), key("z"), key("distance")}))
    sections << readSection(object, grid);
  if (sections.isEmpty() || sections.size() > most)
    maps.fail(name, QObject::tr("expected 1 to %1 sections").arg(most));
  return sections;
}

QStringList readGridFiles(const JobObject &object, const QDir &folder, int nDimensions)
{
  QStringList files;
  for (const QString &name : object.texts(key("grid"))) {
    const QString path = QStringLiteral("grid[%1]").arg(files.size());
    files << readOutputFile(object, path, name, folder, gridEndings());
    if (nDimensions > 2 && isPlaneFormat(QFileInfo(name).suffix().toLower()))
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
  const JobObject maps =
      object.object(key("maps"), {key("estimate"), key("deviation"), key("sections")});
  output.estimateMap = readMap(maps, key("estimate"), folder);
  output.deviationMap = readMap(maps, key("deviation"), folder);
  output.sections = readSections(maps, job.grid);
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
  for (const auto &[place, file] : job.output.getPlacedFiles()) {
    const QString identity = identityOf(file);
    if (inputs.contains(identity))
      root.fail(place, QObject::tr("\"%1\" is an input of the job and would be overwritten")
                           .arg(shownPath(file)));
    if (outputs.contains(identity))
      root.fail(place, QObject::tr("\"%1\" would be written twice").arg(shownPath(file)));
    outputs << identity;
  }
}

}  // namespace

void readOutput(const JobObject &root, const QDir &jobFolder, Job &job)
{
  if (!root.has(key("output")))
    return;
  const JobObject object =
      root.object(key("output"), {key("directory"), key("data"), key("grid"), key("maps"),
                                  key("fit"), key("variogram"), key("crossValidation"),
                                  key("report"), key("results"), key("overwrite")});
  const QDir folder(jobFolder.absoluteFilePath(object.text(key("directory"), key("."))));
  JobOutput &output = job.output;
  output.overwrite = object.flag(key("overwrite"), false);
  readStepFiles(object, "data", true, folder,
                {{"map", pictureEndings(), &output.dataMap},
                 {"histogram", pictureEndings(), &output.dataHistogram}});
  readKrigingFiles(object, folder, job, output);
  readVariogramFiles(object, folder, job, output);
  readStepFiles(object, "fit", job.fit.has_value(), folder,
                {{"model", modelEndings(), &output.fittedModel}});
  readStepFiles(object, "crossValidation", job.crossValidation.has_value(), folder,
                {{"table", {key("csv"), key("gpkg")}, &output.crossValidationTable},
                 {"picture", pictureEndings(), &output.crossValidationPicture},
                 {"map", pictureEndings(), &output.crossValidationMap}});
  if (object.has(key("report")))
    output.report = readOutputFile(object, key("report"), object.text(key("report")), folder,
                                   {key("html"), key("htm")});
  if (object.has(key("results")))
    output.results =
        readOutputFile(object, key("results"), object.text(key("results")), folder, {key("json")});
  checkOutputs(root, job);
}

}  // namespace orvenal
