#include "app/commands/ConvertCommand.h"

#include "app/base/UsageError.h"
#include "app/commands/CommandParser.h"
#include "app/console/Console.h"
#include "app/io/InputFile.h"
#include "app/io/OutputFiles.h"
#include "app/io/SpatialReference.h"
#include "app/job/ModelFile.h"
#include "app/study/TableConversion.h"
#include "geos/vmodel/NgmVModel.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QObject>

namespace orvenal {

namespace {

CommandOption option(const char *name, const char *value, const QString &help)
{
  CommandOption option;
  option.name = QLatin1String(name);
  option.value = QLatin1String(value);
  option.help = help;
  return option;
}

char readSeparator(const QCommandLineParser &parser)
{
  const QString option = QStringLiteral("separator");
  const QString text = parser.value(option);
  if (!parser.isSet(option))
    return 0;
  if (text == QLatin1String("tab") || text == QLatin1String("\\t"))
    return '\t';
  if (text == QLatin1String("blank"))
    return ' ';
  if (text != QLatin1String(",") && text != QLatin1String(";") && text != QLatin1String(" ") &&
      text != QLatin1String("\t"))
    throw UsageError(
        QObject::tr("--separator: \"%1\" is not known; allowed: \",\", \";\", \"tab\", \"blank\"")
            .arg(text));
  return text[0].toLatin1();
}

TableFormat readFormat(const QCommandLineParser &parser)
{
  TableFormat format;
  format.layer = parser.value(QStringLiteral("layer"));
  format.separator = readSeparator(parser);
  const QString decimal = parser.value(QStringLiteral("decimal"));
  if (parser.isSet(QStringLiteral("decimal"))) {
    if (decimal != QLatin1String(".") && decimal != QLatin1String(","))
      throw UsageError(
          QObject::tr("--decimal: \"%1\" is not known; allowed: \".\", \",\"").arg(decimal));
    format.decimal = decimal[0].toLatin1();
  }
  if (format.separator == format.decimal)
    throw UsageError(QObject::tr("--decimal: the decimal mark is the separator of fields too"));
  if (parser.isSet(QStringLiteral("undefined")))
    format.undefined = parser.values(QStringLiteral("undefined")).join(',').split(',');
  return format;
}

QStringList readAxes(const QCommandLineParser &parser)
{
  QStringList axes;
  for (const QString &axis : {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")}) {
    if (parser.isSet(axis))
      axes << parser.value(axis);
  }
  const bool isPair = parser.isSet(QStringLiteral("x")) && parser.isSet(QStringLiteral("y"));
  if (!axes.isEmpty() && !isPair)
    throw UsageError(QObject::tr("--x and --y have to be given together"));
  axes.removeDuplicates();
  if (!axes.isEmpty() && axes.size() < (parser.isSet(QStringLiteral("z")) ? 3 : 2))
    throw UsageError(QObject::tr("--x, --y and --z have to name different columns"));
  return axes;
}

ConversionRequest readRequest(const QCommandLineParser &parser)
{
  ConversionRequest request;
  const QStringList files = parser.positionalArguments();
  if (files.size() != 2)
    throw UsageError(
        QObject::tr("expected two files: what to convert, and what to write\nSee: "
                    "orvenal help convert"));
  request.input = files[0];
  request.output = files[1];
  requireInput(request.input);
  const QString canonical = QFileInfo(request.output).canonicalFilePath();
  if (!canonical.isEmpty() && canonical == QFileInfo(request.input).canonicalFilePath())
    throw UsageError(QObject::tr("\"%1\" would be overwritten by itself").arg(request.input));
  request.format = readFormat(parser);
  request.axes = readAxes(parser);
  if (parser.isSet(QStringLiteral("columns")))
    request.columns = parser.value(QStringLiteral("columns")).split(',', Qt::SkipEmptyParts);
  request.crs = parser.value(QStringLiteral("crs"));
  QString reason;
  if (!request.crs.isEmpty() && !SpatialReference::parse(request.crs, reason).isValid())
    throw UsageError(
        QObject::tr("--crs: \"%1\" is not a coordinate reference system that PROJ knows")
            .arg(request.crs));
  return request;
}

void convertModel(const ConversionRequest &request, OutputFiles &files, const QString &path)
{
  const NgmVModel model = readModelFile(request.input, request.input);
  files.write(path, modelToBytes(request.output, model, model.getContext().getNDimensions()));
}

}  // namespace

QString ConvertCommand::getSummary() const
{
  return QObject::tr("write a table, a grid or a model in another format");
}

QString ConvertCommand::getArguments() const
{
  return QObject::tr("[OPTIONS] INPUT OUTPUT");
}

QString ConvertCommand::getDescription() const
{
  return QObject::tr(
      "Writes a table of points, a grid or a variogram model in the format that the ending of "
      "OUTPUT names. INPUT is whatever the program reads: CSV, GEO-EAS, netCDF, what GDAL "
      "reads.\n\n"
      "Points: .csv, numbers with all their digits, and texts; .gpkg, a GeoPackage; .dat, GEO-EAS, "
      "numbers only, its title names the mark of undefined values.\n\n"
      "Grids, made of points that lie on the nodes of one: .nc, netCDF (CF-1.8); .tif, GeoTIFF, a "
      "band per column, two dimensions; .gslib, every node in the order of GSLIB, in the layout of "
      "GEO-EAS.\n\n"
      "Models: .json, to be read, and .bin, the binary form.");
}

CommandOptions ConvertCommand::getOptions() const
{
  CommandOption x = option("x", "NAME", QObject::tr("column of the first coordinate"));
  x.fallback = QObject::tr("by its name");
  CommandOption columns = option("columns", "A,B", QObject::tr("columns to be kept besides them"));
  columns.fallback = QObject::tr("all");
  CommandOption crs = option("crs", "CRS", QObject::tr("coordinate reference system"));
  crs.fallback = QObject::tr("that of INPUT");
  CommandOption separator =
      option("separator", "C", QObject::tr("of a text table: \",\", \";\", tab or blank"));
  separator.fallback = QObject::tr("found out");
  CommandOption decimal = option("decimal", "C", QObject::tr("its decimal mark, \".\" or \",\""));
  decimal.fallback = QObject::tr("found out");
  CommandOption undefined =
      option("undefined", "A,B", QObject::tr("texts that stand for undefined values"));
  undefined.fallback = QObject::tr("an empty field and NA");
  CommandOption quiet = option("quiet", "", QObject::tr("print nothing but errors"));
  quiet.letter = QStringLiteral("q");
  return {x,
          option("y", "NAME", QObject::tr("column of the second one")),
          option("z", "NAME", QObject::tr("column of the third one")),
          columns,
          option("layer", "NAME", QObject::tr("the layer of a file that has several")),
          crs,
          separator,
          decimal,
          undefined,
          option("overwrite", "", QObject::tr("replace OUTPUT if it exists")),
          quiet,
          helpOption()};
}

QList<QStringList> ConvertCommand::getExamples() const
{
  return {{QStringLiteral("orvenal convert --crs EPSG:28992 meuse.csv meuse.gpkg"),
           QObject::tr("samples for a map program")},
          {QStringLiteral("orvenal convert --columns dist,soil meuse_grid.csv meuse_grid.nc"),
           QObject::tr("a grid as netCDF")}};
}

void ConvertCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parseArguments(*this, arguments, parser);
  if (parser.isSet(QStringLiteral("help"))) {
    console.answer(getHelp());
    return;
  }
  console.setQuiet(parser.isSet(QStringLiteral("quiet")));
  const ConversionRequest request = readRequest(parser);
  const QString ending = QFileInfo(request.output).suffix().toLower();
  const bool isModel = modelEndings().contains(ending);
  if (!isModel && !TableConversion::endings().contains(ending))
    throw UsageError(
        QObject::tr("\"%1\" should end with .%2")
            .arg(request.output, (TableConversion::endings() + modelEndings()).join(" or .")));
  const QString path = QDir::cleanPath(QDir::current().absoluteFilePath(request.output));
  OutputFiles files(parser.isSet(QStringLiteral("overwrite")) ? OutputFiles::REPLACE
                                                              : OutputFiles::REFUSE);
  files.reserve({path});
  if (isModel)
    convertModel(request, files, path);
  else
    TableConversion(request, console).write(files.getTemporaryPath(path));
  files.commit();
  console.print(QObject::tr("written: %1").arg(request.output));
}

}  // namespace orvenal
