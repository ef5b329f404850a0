#include "app/commands/ConvertCommand.h"

#include "app/console/Console.h"
#include "app/io/ModelFile.h"
#include "app/io/OutputFiles.h"
#include "app/io/SpatialReference.h"
#include "app/io/TableConversion.h"
#include "app/io/UsageError.h"
#include "geos/vmodel/NgmVModel.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QObject>

namespace orvenal {

namespace {

QString see()
{
  return QObject::tr("\nSee: orvenal help convert");
}

void parse(QCommandLineParser &parser, const QStringList &arguments)
{
  const QString name = QStringLiteral("NAME");
  parser.addOptions({{QStringLiteral("x"), QString(), name},
                     {QStringLiteral("y"), QString(), name},
                     {QStringLiteral("z"), QString(), name},
                     {QStringLiteral("columns"), QString(), name},
                     {QStringLiteral("layer"), QString(), name},
                     {QStringLiteral("crs"), QString(), name},
                     {QStringLiteral("separator"), QString(), name},
                     {QStringLiteral("decimal"), QString(), name},
                     {QStringLiteral("undefined"), QString(), name},
                     {QStringLiteral("overwrite"), QString()},
                     {{QStringLiteral("q"), QStringLiteral("quiet")}, QString()},
                     {{QStringLiteral("h"), QStringLiteral("help")}, QString()}});
  if (!parser.parse(QStringList(QStringLiteral("orvenal")) + arguments))
    throw UsageError(parser.errorText() + see());
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
    throw UsageError(QObject::tr("expected two files: what to convert, and what to write") + see());
  request.input = files[0];
  request.output = files[1];
  if (!QFileInfo::exists(request.input))
    throw UsageError(QObject::tr("there is no file \"%1\"").arg(request.input));
  if (QFileInfo(request.input).isDir())
    throw UsageError(QObject::tr("\"%1\" is a folder").arg(request.input));
  const QString canonical = QFileInfo(request.output).canonicalFilePath();
  if (!canonical.isEmpty() && canonical == QFileInfo(request.input).canonicalFilePath())
    throw UsageError(QObject::tr("\"%1\" would be overwritten by itself").arg(request.input));
  request.format = readFormat(parser);
  request.axes = readAxes(parser);
  if (parser.isSet(QStringLiteral("columns")))
    request.columns = parser.value(QStringLiteral("columns")).split(',', QString::SkipEmptyParts);
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

QString ConvertCommand::getHelp() const
{
  return QObject::tr(
      "usage: orvenal convert [OPTIONS] INPUT OUTPUT\n\n"
      "Writes a table of points, a grid or a variogram model in the format that the\n"
      "ending of OUTPUT names. INPUT is whatever the program reads: CSV, GEO-EAS,\n"
      "what GDAL reads, netCDF.\n\n"
      "  .csv            points, numbers with all their digits, and texts\n"
      "  .dat            points as GEO-EAS, numbers only; the title names the mark of\n"
      "                  undefined values\n"
      "  .gpkg           points as GeoPackage\n"
      "  .gslib          a grid in the order of GSLIB, in the layout of GEO-EAS\n"
      "  .tif            a grid of two dimensions as GeoTIFF, a band per column\n"
      "  .nc             a grid as netCDF (CF-1.8)\n"
      "  .json, .bin     a variogram model, to be read and in binary form\n\n"
      "Grids are made of points that lie on the nodes of one.\n\n"
      "  --x NAME, --y NAME, --z NAME\n"
      "                    columns of the coordinates (default: by their names)\n"
      "  --columns A,B     columns to be kept besides them (default: all)\n"
      "  --layer NAME      the layer of a file that has several\n"
      "  --crs CRS         coordinate reference system (default: that of INPUT)\n"
      "  --separator C     of a text table: \",\", \";\", tab or blank (default: found out)\n"
      "  --decimal C       its decimal mark, \".\" or \",\" (default: found out)\n"
      "  --undefined A,B   texts for undefined values (default: an empty field and NA)\n"
      "  --overwrite       replace OUTPUT if it exists\n"
      "  -q, --quiet       print nothing but errors\n"
      "  -h, --help        show this text");
}

void ConvertCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parse(parser, arguments);
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
