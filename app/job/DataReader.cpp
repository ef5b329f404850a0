#include "app/job/DataReader.h"

#include "app/base/PathText.h"
#include "app/io/InputFile.h"
#include "app/io/SpatialReference.h"
#include "app/job/JobObject.h"
#include "app/job/KrigingReader.h"

#include <QDir>
#include <QObject>

#include <tuple>

namespace orvenal {

namespace {

char readSeparator(const JobObject &object)
{
  const QString text = object.choice(
      key("separator"), {key("auto"), key(","), key(";"), key("\t"), key(" ")}, key("auto"));
  return text == QLatin1String("auto") ? 0 : text[0].toLatin1();
}

TableFormat readFormat(const JobObject &object)
{
  // In the order of TableFormat::Kind.
  static const QStringList kinds = {key("auto"), key("csv"), key("geo-eas"), key("gdal")};
  TableFormat format;
  format.kind =
      TableFormat::Kind(kinds.indexOf(object.choice(key("format"), kinds, kinds.first())));
  format.layer = object.text(key("layer"), QString());
  if (!format.layer.isEmpty() &&
      (format.kind == TableFormat::CSV || format.kind == TableFormat::GEO_EAS))
    object.fail(key("layer"), QObject::tr("text tables have no layers"));
  format.separator = readSeparator(object);
  format.decimal = object.choice(key("decimal"), {key("."), key(",")}, key("."))[0].toLatin1();
  if (format.separator == format.decimal)
    object.fail(key("decimal"), QObject::tr("the decimal mark is the separator of fields too"));
  if (object.has(key("undefined")))
    format.undefined = object.texts(key("undefined"));
  return format;
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

}  // namespace

QString findInput(const JobObject &object, const QString &name, const QDir &folder)
{
  const QString shown = object.text(name);
  const QString path = shown.isEmpty() ? QString() : folder.absoluteFilePath(shown);
  const bool isRelative = QDir::isRelativePath(shown);
  const QString problem = inputFileProblem(path, isRelative ? shown : shownPath(path));
  if (problem.isEmpty())
    return path;
  const bool isElsewhere = isRelative && folder != QDir::current();
  object.fail(name, isElsewhere ? QObject::tr("%1 (in \"%2\", the folder of the job)")
                                      .arg(problem, shownPath(folder.absolutePath()))
                                : problem);
}

QStringList tableKeys()
{
  return {key("file"), key("format"), key("layer"), key("separator"), key("decimal"),
          key("x"),    key("y"),      key("z"),     key("undefined")};
}

JobTable readTable(const JobObject &object, const QDir &folder)
{
  JobTable table;
  table.path = object.getPath();
  table.shown = object.text(key("file"));
  table.file = findInput(object, key("file"), folder);
  table.format = readFormat(object);
  table.x = object.text(key("x"), key("x"));
  table.y = object.text(key("y"), key("y"));
  table.z = object.text(key("z"), QString());
  for (const auto &[name, column, other] :
       {std::tuple("y", table.y, table.x), std::tuple("z", table.z, table.x),
        std::tuple("z", table.z, table.y)}) {
    if (column == other)
      object.fail(key(name),
                  QObject::tr("column \"%1\" is another coordinate already").arg(column));
  }
  return table;
}

void readData(const JobObject &root, const QDir &folder, Job &job)
{
  const JobObject object =
      root.object(key("data"), tableKeys() << key("crs") << key("unit") << key("duplicates"));
  job.data = readTable(object, folder);
  const QStringList policies = duplicatePolicyNames();
  job.duplicates = DuplicatePolicy(
      policies.indexOf(object.choice(key("duplicates"), policies, policies.first())));
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

}  // namespace orvenal
