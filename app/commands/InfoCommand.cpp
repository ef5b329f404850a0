#include "app/commands/InfoCommand.h"

#include "app/base/UsageError.h"
#include "app/commands/CommandParser.h"
#include "app/console/Console.h"
#include "app/io/InputFile.h"
#include "app/job/JobObject.h"
#include "app/job/JobReader.h"
#include "app/job/ModelFile.h"
#include "app/report/InfoJson.h"
#include "app/report/InfoText.h"
#include "app/study/Job.h"
#include "app/study/TableSummary.h"
#include "geos/vmodel/NgmVModel.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QObject>
#include <QRegularExpression>

namespace orvenal {

namespace {

/// What the command was asked for, and where its answer goes.
struct Request
{
  QString file;
  QString layer;
  bool wantsJson = false;
  Console &console;

  void answer(const QString &text, const QJsonObject &json) const
  {
    console.answer(wantsJson ? QString::fromUtf8(QJsonDocument(json).toJson()).trimmed() : text);
  }
};

Request readRequest(const QCommandLineParser &parser, Console &console)
{
  const QStringList files = parser.positionalArguments();
  if (files.size() != 1)
    throw UsageError(
        (files.isEmpty() ? QObject::tr("the file is missing") : QObject::tr("one file at a time")) +
        QObject::tr("\nSee: orvenal help info"));
  requireInput(files.first());
  return {files.first(), parser.value(QStringLiteral("layer")),
          parser.isSet(QStringLiteral("json")), console};
}

/// The file as text when it may be a job or a model, by its ending and size; else empty.
QString readJsonText(const QString &path)
{
  constexpr qint64 largestJob = 16 << 20;
  QFile file(path);
  if (QFileInfo(path).suffix().compare(QLatin1String("json"), Qt::CaseInsensitive) != 0 ||
      file.size() > largestJob)
    return QString();
  if (!file.open(QIODevice::ReadOnly))
    throw UsageError(QObject::tr("%1: cannot be read: %2").arg(path, file.errorString()));
  static const QRegularExpression geoJson(
      QStringLiteral("\"type\"\\s*:\\s*\"(Feature|FeatureCollection|Topology)\""));
  const QString text = QString::fromUtf8(file.readAll());
  return geoJson.match(text).hasMatch() ? QString() : text;
}

bool hasMember(const QString &json, const char *name)
{
  return QRegularExpression(QStringLiteral("\"%1\"\\s*:").arg(QLatin1String(name)))
      .match(json)
      .hasMatch();
}

void describeModel(const Request &request)
{
  const NgmVModel model = readModelFile(request.file, request.file);
  const int nDimensions = model.getContext().getNDimensions();
  request.answer(InfoText::model(model, nDimensions, request.file),
                 InfoJson::model(model, nDimensions, request.file));
}

void describeTable(const Request &request)
{
  TableFormat format;
  format.layer = request.layer;
  const QList<TableLayer> layers = TableReader::listLayers(request.file, request.file, format);
  if (request.layer.isEmpty() && layers.size() > 1) {
    request.answer(InfoText::layers(layers, request.file), InfoJson::layers(layers, request.file));
    return;
  }
  const TableSummary summary = summarizeTable(request.file, request.file, format);
  request.answer(InfoText::table(summary, request.file), InfoJson::table(summary, request.file));
}

}  // namespace

QString InfoCommand::getSummary() const
{
  return QObject::tr("say what is in a file: a table, a model or a job");
}

QString InfoCommand::getArguments() const
{
  return QObject::tr("[OPTIONS] FILE");
}

QString InfoCommand::getDescription() const
{
  return QObject::tr(
      "Says what is in a file. Of a table (CSV, GEO-EAS, GeoPackage, Shapefile, GeoTIFF and what "
      "else GDAL reads): format, layers, coordinate reference system, records, columns with their "
      "types and values, the extent of the coordinates, duplicated places, and the grid on whose "
      "nodes the points lie, if there is one. Of a variogram model: its structures. Of a job: its "
      "parts.");
}

CommandOptions InfoCommand::getOptions() const
{
  CommandOption layer;
  layer.name = QStringLiteral("layer");
  layer.value = QStringLiteral("NAME");
  layer.help = QObject::tr("the layer of a file that has several");
  CommandOption json;
  json.name = QStringLiteral("json");
  json.help = QObject::tr("answer in JSON");
  return {layer, json, helpOption()};
}

QList<QStringList> InfoCommand::getExamples() const
{
  return {{QStringLiteral("orvenal info meuse.csv"), QObject::tr("the columns of a table")},
          {QStringLiteral("orvenal info job.json"), QObject::tr("the parts of a job")}};
}

void InfoCommand::run(const QStringList &arguments, Console &console) const
{
  QCommandLineParser parser;
  parseArguments(*this, arguments, parser);
  if (parser.isSet(QStringLiteral("help"))) {
    console.answer(getHelp());
    return;
  }
  const Request request = readRequest(parser, console);
  const QString json = readJsonText(request.file);
  if (hasMember(json, "data")) {
    const Job job = readJob(request.file);
    request.answer(InfoText::job(job, request.file), InfoJson::job(job, request.file));
  } else if (hasMember(json, "structures") || hasMember(json, "nugget") ||
             isBinaryModel(request.file)) {
    describeModel(request);
  } else {
    describeTable(request);
  }
}

}  // namespace orvenal
