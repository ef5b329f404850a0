#include "app/io/JobReader.h"

#include "app/io/JobObject.h"
#include "app/io/KrigingReader.h"
#include "app/io/ModelReader.h"
#include "app/io/NeighborhoodReader.h"
#include "app/io/SpatialReference.h"
#include "app/io/Suggestion.h"
#include "app/io/UsageError.h"
#include "app/io/VariogramReader.h"
#include "app/study/Compass.h"

#include <QDir>
#include <QFileInfo>
#include <QObject>
#include <QRegularExpression>

#include <climits>

namespace orvenal {

namespace {

QString key(const char *name)
{
  return QString::fromLatin1(name);
}

QByteArray readFile(const QString &path)
{
  constexpr qint64 largestJob = 16 << 20;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    throw UsageError(QObject::tr("%1: cannot be read: %2").arg(path, file.errorString()));
  const QByteArray text = file.read(largestJob + 1);
  if (text.size() > largestJob)
    throw UsageError(QObject::tr("%1: larger than 16 MB; this is not a job").arg(path));
  return text;
}

char readSeparator(const JobObject &object)
{
  const QString text = object.choice(
      key("separator"), {key("auto"), key(","), key(";"), key("\t"), key(" ")}, key("auto"));
  return text == QLatin1String("auto") ? 0 : text[0].toLatin1();
}

CsvFormat readFormat(const JobObject &object)
{
  CsvFormat format;
  format.separator = readSeparator(object);
  format.decimal = object.choice(key("decimal"), {key("."), key(",")}, key("."))[0].toLatin1();
  if (format.separator == format.decimal)
    object.fail(key("decimal"), QObject::tr("the decimal mark is the separator of fields too"));
  if (object.has(key("undefined")))
    format.undefined = object.texts(key("undefined"));
  return format;
}

QStringList tableKeys()
{
  return {key("file"), key("separator"), key("decimal"),  key("x"),
          key("y"),    key("z"),         key("undefined")};
}

JobTable readTable(const JobObject &object, const QDir &folder)
{
  JobTable table;
  table.path = object.getPath();
  table.shown = object.text(key("file"));
  table.file = folder.absoluteFilePath(table.shown);
  const QFileInfo file(table.file);
  if (table.shown.isEmpty() || !file.exists())
    object.fail(key("file"), QObject::tr("there is no file \"%1\"").arg(table.file));
  if (file.isDir())
    object.fail(key("file"), QObject::tr("\"%1\" is a folder").arg(table.file));
  table.format = readFormat(object);
  table.x = object.text(key("x"));
  table.y = object.text(key("y"));
  table.z = object.text(key("z"), QString());
  return table;
}

void readData(const JobObject &root, const QDir &folder, Job &job)
{
  const JobObject object = root.object(key("data"), tableKeys() << key("crs") << key("unit"));
  job.data = readTable(object, folder);
  job.crs = object.text(key("crs"), QString());
  if (!job.crs.isEmpty()) {
    QString reason;
    const SpatialReference reference = SpatialReference::parse(job.crs, reason);
    if (!reference.isValid())
      object.fail(key("crs"), QObject::tr("\"%1\" is not a coordinate reference system that PROJ "
                                          "knows%2")
                                  .arg(job.crs, reason.isEmpty() ? QString() : ": " + reason));
    job.lengthUnit = reference.getUnitSymbol();
  }
  job.lengthUnit = object.text(key("unit"), job.lengthUnit);
}

QStringList variableKeys()
{
  return {key("column"), key("transform"), key("name"), key("unit")};
}

JobVariable readVariable(const JobObject &object)
{
  JobVariable variable;
  static_cast<Column &>(variable) = readColumn(object);
  variable.name = object.text(key("name"), variable.getName());
  variable.unit = object.text(key("unit"), QString());
  return variable;
}

void readVariables(const JobObject &root, Job &job)
{
  job.variable = readVariable(root.object(key("variable"), variableKeys()));
  if (!root.has(key("covariates")))
    return;
  QStringList names = {job.variable.name};
  for (const JobObject &object : root.objects(key("covariates"), variableKeys())) {
    const JobVariable covariate = readVariable(object);
    if (names.contains(covariate.name))
      object.fail(QObject::tr("there are two variables named \"%1\"").arg(covariate.name));
    names << covariate.name;
    job.covariates << covariate;
  }
}

void checkSize(const JobObject &object, const NbgGeomGrid &grid)
{
  // The results of a run are held in memory.
  constexpr qint64 mostNodes = INT_MAX;
  const qint64 nodes = grid.getGridSize();
  if (nodes < 1 || nodes > mostNodes)
    object.fail(key("nodes"),
                QObject::tr("the grid has too many nodes (at most %1)").arg(mostNodes));
}

NbgGeomGrid readGeometry(const JobObject &object)
{
  constexpr int mostNodesPerAxis = 1 << 24;
  const std::vector<int> nodes = object.integers(key("nodes"), 2, 3, 1, mostNodesPerAxis);
  const int n = int(nodes.size());
  const std::vector<double> origin = object.numbers(key("origin"), n, n);
  const std::vector<double> cell = object.numbers(key("cell"), n, n, 0., JobObject::EXCLUDED);
  NbgGeomGrid grid;
  if (n == 2)
    grid.setNodesNumber2D(nodes[0], nodes[1]);
  else
    grid.setNodesNumber(nodes[0], nodes[1], nodes[2]);
  grid.setOriginCentered({origin[0], origin[1], n > 2 ? origin[2] : 0.});
  grid.setCellSize({cell[0], cell[1], n > 2 ? cell[2] : 1.});
  if (object.has(key("rotation")))
    grid.setRotation(Compass::gridFrame(object.number(key("rotation"))));
  checkSize(object, grid);
  return grid;
}

void checkDimension(const JobTable &table, const JobObject &root, const NbgGeomGrid &grid)
{
  if (!grid.is2D() && table.z.isEmpty())
    root.fail(table.path + ".z", QObject::tr("missing; the grid has three dimensions"));
  if (grid.is2D() && !table.z.isEmpty())
    root.fail(table.path + ".z",
              QObject::tr("the grid has two dimensions; give \"nodes\", \"cell\" and \"origin\" "
                          "three values, or leave z out"));
}

void readGrid(const JobObject &root, const QDir &folder, Job &job)
{
  const JobObject object = root.object(key("grid"), {key("origin"), key("cell"), key("nodes"),
                                                     key("rotation"), key("mask"), key("values")});
  job.grid = readGeometry(object);
  job.hasGrid = true;
  checkDimension(job.data, root, job.grid);
  if (object.has(key("mask"))) {
    job.mask = readTable(object.object(key("mask"), tableKeys()), folder);
    checkDimension(*job.mask, root, job.grid);
  }
  if (object.has(key("values"))) {
    job.gridValues = readTable(object.object(key("values"), tableKeys()), folder);
    checkDimension(*job.gridValues, root, job.grid);
  }
}

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

JobOutput readOutput(const JobObject &root, const QDir &jobFolder, const Job &job)
{
  const JobObject object =
      root.object(key("output"), {key("directory"), key("grid"), key("maps"), key("fit"),
                                  key("variogram"), key("crossValidation"), key("report")});
  const QDir folder(jobFolder.absoluteFilePath(object.text(key("directory"), key("."))));
  JobOutput output;
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
  return output;
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

void readResources(const JobObject &root, Job &job)
{
  if (root.has(key("threads")))
    job.threads = root.integer(key("threads"), 1, 1024);
  if (!root.has(key("memory")))
    return;
  job.memory = parseMemorySize(root.text(key("memory")));
  if (job.memory <= 0)
    root.fail(key("memory"), QObject::tr("expected a size such as \"500 MB\" or \"2 GB\""));
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
NgmVModel readModelOf(const JobObject &root, const QDir &folder, const Job &job)
{
  const JobObject object = root.object(key("model"), modelKeys() << key("file"));
  if (!object.has(key("file")))
    return readModel(object, job.getNDimensions(), job.getNVariables());
  for (const QString &part : modelKeys()) {
    if (object.has(part))
      object.fail(part, QObject::tr("the model is that of \"file\""));
  }
  const QString file = folder.absoluteFilePath(object.text(key("file")));
  if (!QFileInfo(file).isFile())
    object.fail(key("file"), QObject::tr("there is no file \"%1\"").arg(file));
  return readModel(JobObject::parse(file, readFile(file), modelKeys()), job.getNDimensions(),
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
  if (!job.covariates.isEmpty())
    root.fail(name, QObject::tr("fits one variable; with \"covariates\" give the \"model\""));
  job.fit = readFit(root.object(name, fitKeys()));
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
  job.neighborhood =
      readNeighborhood(root.object(key("neighborhood"), neighborhoodKeys()), job.getNDimensions());
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
  Job job;
  job.file = QFileInfo(path).absoluteFilePath();
  job.text = readFile(path);
  const JobObject root = JobObject::parse(
      path, job.text,
      {key("title"), key("data"), key("variable"), key("covariates"), key("variogram"), key("fit"),
       key("grid"), key("model"), key("kriging"), key("neighborhood"), key("crossValidation"),
       key("output"), key("threads"), key("memory")});
  const QDir folder = QFileInfo(job.file).absoluteDir();
  job.title = root.text(key("title"), QFileInfo(path).completeBaseName());
  readData(root, folder, job);
  readVariables(root, job);
  readSteps(root, folder, job);
  job.output = readOutput(root, folder, job);
  checkOutputs(root, job);
  readResources(root, job);
  return job;
}

qint64 parseMemorySize(const QString &text)
{
  static const QRegularExpression pattern(
      QStringLiteral("^\\s*(\\d{1,12}(?:\\.\\d{1,6})?)\\s*([KMGT])B\\s*$"),
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
