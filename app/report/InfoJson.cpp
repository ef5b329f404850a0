#include "app/report/InfoJson.h"

#include "app/io/SpatialReference.h"
#include "app/job/ModelJson.h"
#include "app/study/Compass.h"
#include "app/study/Job.h"
#include "app/study/TableSummary.h"
#include "geos/vmodel/NgmVModel.h"

#include <QJsonArray>

#include <cmath>

namespace orvenal {

namespace {

QString keyed(const char *name)
{
  return QString::fromLatin1(name);
}

QJsonObject begin(const char *kind, const QString &shown)
{
  return {{keyed("file"), shown}, {keyed("kind"), keyed(kind)}};
}

QJsonValue number(double value)
{
  return NbbGlobal::isDefined(value) ? QJsonValue(value) : QJsonValue();
}

QJsonValue textOrNull(const QString &text)
{
  return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject columnJson(const ColumnSummary &column)
{
  static const char *const types[] = {"number", "text", "mixed", "empty"};
  return {{keyed("name"), column.name},
          {keyed("type"), keyed(types[column.getType()])},
          {keyed("whole"), column.isWhole},
          {keyed("numbers"), column.nNumbers},
          {keyed("texts"), column.nTexts},
          {keyed("undefined"), column.nUndefined},
          {keyed("minimum"), number(column.minimum)},
          {keyed("mean"), number(column.mean)},
          {keyed("maximum"), number(column.maximum)},
          {keyed("example"), textOrNull(column.example)},
          {keyed("marks"), QJsonArray::fromStringList(column.marks)}};
}

QJsonValue referenceJson(const QString &wkt)
{
  if (wkt.isEmpty())
    return QJsonValue();
  QString reason;
  const SpatialReference reference = SpatialReference::parse(wkt, reason);
  return QJsonObject{{keyed("name"), reference.getName()},
                     {keyed("definition"), reference.isValid() ? reference.toText() : wkt},
                     {keyed("unit"), textOrNull(reference.getUnitSymbol())},
                     {keyed("geographic"), reference.isGeographic()}};
}

QJsonValue gridJson(const TableSummary &summary)
{
  if (!summary.grid)
    return QJsonValue();
  const int n = summary.grid->is2D() ? 2 : 3;
  const NbgIntVector3D counts = summary.grid->getNodesNumber();
  const int nodes[] = {counts.x(), counts.y(), counts.z()};
  QJsonArray first;
  QJsonArray cell;
  QJsonArray nodeCounts;
  for (int axis = 0; axis < n; ++axis) {
    first.append(summary.grid->getOriginCentered()[axis]);
    cell.append(summary.grid->getCellSize()[axis]);
    nodeCounts.append(nodes[axis]);
  }
  constexpr double parts = 1e9;  // of a degree: what follows is rounding
  const double azimuth = Compass::azimuthOfRows(summary.grid->getRotation());
  return QJsonObject{{keyed("origin"), first},
                     {keyed("cell"), cell},
                     {keyed("nodes"), nodeCounts},
                     {keyed("rotation"), std::round(azimuth * parts) / parts}};
}

QJsonArray coordinatesJson(const TableSummary &summary)
{
  QJsonArray list;
  const int indices[] = {summary.coordinates.x, summary.coordinates.y, summary.coordinates.z};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (indices[axis] < 0 || summary.nPlaces == 0)
      continue;
    list.append(QJsonObject{{keyed("column"), summary.columns[indices[axis]].name},
                            {keyed("minimum"), summary.lower[axis]},
                            {keyed("maximum"), summary.upper[axis]}});
  }
  return list;
}

const char *nameOf(Step step)
{
  switch (step) {
    case Step::STATISTICS:
      return "statistics";
    case Step::VARIOGRAM:
      return "variogram";
    case Step::FIT:
      return "fit";
    case Step::CROSS_VALIDATION:
      return "crossValidation";
    case Step::KRIGING:
      return "kriging";
    case Step::REPORT:
      return "report";
  }
  return "";
}

}  // namespace

QJsonObject InfoJson::table(const TableSummary &summary, const QString &shown)
{
  QJsonArray columns;
  for (const ColumnSummary &column : summary.columns)
    columns.append(columnJson(column));
  QJsonObject object = begin("table", shown);
  object.insert(keyed("format"), summary.formatName);
  object.insert(keyed("layer"), textOrNull(summary.format.layer));
  object.insert(keyed("decimal"), QString(QLatin1Char(summary.format.decimal)));
  object.insert(keyed("reference"), referenceJson(summary.reference));
  object.insert(keyed("records"), summary.nRecords);
  object.insert(keyed("coordinates"), coordinatesJson(summary));
  object.insert(keyed("places"), summary.nPlaces);
  object.insert(keyed("duplicates"),
                summary.nDuplicates < 0 ? QJsonValue() : QJsonValue(summary.nDuplicates));
  object.insert(keyed("grid"), gridJson(summary));
  object.insert(keyed("columns"), columns);
  return object;
}

QJsonObject InfoJson::layers(const QList<TableLayer> &layers, const QString &shown)
{
  QJsonArray list;
  for (const TableLayer &layer : layers)
    list.append(QJsonObject{
        {keyed("name"), layer.name},
        {keyed("geometry"), layer.geometry},
        {keyed("records"), layer.nRecords < 0 ? QJsonValue() : QJsonValue(layer.nRecords)}});
  QJsonObject object = begin("layers", shown);
  object.insert(keyed("layers"), list);
  return object;
}

QJsonObject InfoJson::model(const NgmVModel &model, int nDimensions, const QString &shown)
{
  QJsonObject object = begin("model", shown);
  object.insert(keyed("variables"), model.getNVariables());
  object.insert(keyed("dimensions"), nDimensions);
  object.insert(keyed("model"), modelToJson(model, nDimensions));
  return object;
}

QJsonObject InfoJson::job(const Job &job, const QString &shown)
{
  QJsonArray variables = {job.variable.name};
  for (const JobVariable &covariate : job.covariates)
    variables.append(covariate.name);
  QJsonArray steps;
  for (const Step step : job.getSteps())
    steps.append(keyed(nameOf(step)));
  QJsonObject object = begin("job", shown);
  object.insert(keyed("title"), job.title);
  object.insert(keyed("data"), job.data.shown);
  object.insert(keyed("variables"), variables);
  object.insert(keyed("steps"), steps);
  object.insert(keyed("outputs"), QJsonArray::fromStringList(job.output.getFiles()));
  return object;
}

}  // namespace orvenal
