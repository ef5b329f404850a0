#include "app/report/InfoText.h"

#include "app/base/NumberText.h"
#include "app/base/PathText.h"
#include "app/console/TextTable.h"
#include "app/io/SpatialReference.h"
#include "app/job/ModelJson.h"
#include "app/report/Describe.h"
#include "app/study/Job.h"
#include "app/study/TableSummary.h"
#include "geos/vmodel/NgmVModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>
#include <QPair>
#include <QVector>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr int lineWidth = 80;
const QString gap = QStringLiteral("  ");

using Facts = QVector<QPair<QString, QString>>;

/// Text broken at blanks; lines behind the first one begin at `indent`.
QString hanging(const QString &text, int indent)
{
  return wrapped(text, lineWidth - indent).join('\n' + QString(indent, ' '));
}

/// One line per fact, the names in a column of their own.
QString factLines(const Facts &facts)
{
  int width = 0;
  for (const auto &fact : facts)
    width = std::max(width, fact.first.size());
  QStringList lines;
  for (const auto &fact : facts)
    lines << gap + fact.first.leftJustified(width) + gap +
                 hanging(fact.second, width + 2 * gap.size());
  return lines.join('\n');
}

/// A table of texts, its first columns to the left, the next ones to the right.
QString alignedRows(const QList<QStringList> &rows, int nLeft)
{
  QStringList lines;
  QVector<int> widths(rows.first().size(), 0);
  for (const QStringList &row : rows) {
    for (int i = 0; i < row.size() && i < widths.size(); ++i)
      widths[i] = std::max(widths[i], row[i].size());
  }
  for (const QStringList &row : rows) {
    QString line;
    for (int i = 0; i < row.size(); ++i)
      line +=
          gap + (i < nLeft ? row[i].leftJustified(widths[i]) : row[i].rightJustified(widths[i]));
    while (line.endsWith(QLatin1Char(' ')))
      line.chop(1);
    lines << line;
  }
  return lines.join('\n');
}

/// Whole numbers in full (coordinates are large), others with as many digits as asked.
QString number(double value, int digits = 7)
{
  constexpr double largestShown = 1e10;
  if (!NbbGlobal::isDefined(value))
    return QString();
  if (value == std::floor(value) && std::abs(value) < largestShown)
    return QString::number(value, 'f', 0);
  return QString::number(value, 'g', digits);
}

QString shortened(const QString &text, int width)
{
  const QString line = text.simplified();
  return line.size() <= width ? line : line.left(width - 1) + QChar(0x2026);
}

QString typeName(const ColumnSummary &column)
{
  switch (column.getType()) {
    case ColumnSummary::NUMBERS:
      return column.isWhole ? QObject::tr("whole") : QObject::tr("real");
    case ColumnSummary::TEXTS:
      return QObject::tr("text");
    case ColumnSummary::MIXED:
      return QObject::tr("mixed");
    case ColumnSummary::NOTHING:
      break;
  }
  return QObject::tr("empty");
}

QStringList columnRow(const ColumnSummary &column, int nameWidth, int digits)
{
  QStringList row = {shortened(column.name, nameWidth), typeName(column),
                     QString::number(column.nNumbers + column.nTexts),
                     QString::number(column.nUndefined)};
  if (column.nNumbers > 0)
    row << number(column.minimum, digits) << number(column.mean, digits)
        << number(column.maximum, digits);
  return row;
}

int widthOf(const QString &lines)
{
  int width = 0;
  for (const QString &line : lines.split('\n'))
    width = std::max(width, line.size());
  return width;
}

QString columnTable(const TableSummary &summary, int nameWidth, int digits)
{
  constexpr int nLeft = 2;
  QList<QStringList> rows;
  rows << QStringList{QObject::tr("column"),    QObject::tr("type"),    QObject::tr("defined"),
                      QObject::tr("undefined"), QObject::tr("minimum"), QObject::tr("mean"),
                      QObject::tr("maximum")};
  for (const ColumnSummary &column : summary.columns)
    rows << columnRow(column, nameWidth, digits);
  QStringList lines = alignedRows(rows, nLeft).split('\n');
  for (int i = 0; i < summary.columns.size(); ++i) {
    const ColumnSummary &column = summary.columns[i];
    if (column.getType() == ColumnSummary::TEXTS)
      lines[i + 1] += gap + QObject::tr("such as \"%1\"").arg(shortened(column.example, 24));
  }
  return lines.join('\n');
}

/// With fewer digits, then shorter names, until it fits.
QString fittingColumnTable(const TableSummary &summary)
{
  int nameWidth = 40;
  int digits = 7;
  QString text = columnTable(summary, nameWidth, digits);
  while (widthOf(text) > lineWidth && (digits > 5 || nameWidth > 8)) {
    if (digits > 5)
      --digits;
    else
      --nameWidth;
    text = columnTable(summary, nameWidth, digits);
  }
  return text;
}

QString times(const QStringList &factors)
{
  return factors.join(QStringLiteral(" x "));
}

QString gridText(const TableSummary &summary)
{
  const NbgGeomGrid &grid = *summary.grid;
  const int n = grid.is2D() ? 2 : 3;
  const NbgIntVector3D counts = grid.getNodesNumber();
  const NbgVector3D cell = grid.getCellSize();
  const NbgVector3D first = grid.getOriginCentered();
  const int nodes[] = {counts.x(), counts.y(), counts.z()};
  QStringList nodeTexts;
  QStringList cells;
  QStringList origin;
  for (int axis = 0; axis < n; ++axis) {
    nodeTexts << QString::number(nodes[axis]);
    cells << number(cell[axis]);
    origin << number(first[axis]);
  }
  const qint64 nTaken = summary.nPlaces - summary.nDuplicates;
  return QObject::tr("%1 nodes (%2 of %3 taken), cells of %4, first node %5")
             .arg(times(nodeTexts), groupedText(nTaken), groupedText(grid.getGridSize()),
                  times(cells), origin.join(QStringLiteral(", "))) +
         Describe::turn(grid);
}

QString referenceText(const QString &wkt)
{
  if (wkt.isEmpty())
    return QObject::tr("none");
  QString reason;
  const SpatialReference reference = SpatialReference::parse(wkt, reason);
  if (!reference.isValid())
    return QObject::tr("one that is not understood");
  const QString text = SpatialReference::describe(reference.toText());
  return reference.getUnitSymbol().isEmpty()
             ? text
             : QObject::tr("%1, unit %2").arg(text, reference.getUnitSymbol());
}

void addPlaces(const TableSummary &summary, Facts &facts)
{
  const CoordinateColumns &columns = summary.coordinates;
  if (!columns.isComplete()) {
    facts.append({QObject::tr("coordinates"), QObject::tr("no columns found by their names")});
    return;
  }
  const int indices[] = {columns.x, columns.y, columns.z};
  for (int axis = 0; axis < 3; ++axis) {
    if (indices[axis] < 0)
      continue;
    facts.append(
        {axis == 0 ? QObject::tr("coordinates") : QString(),
         QObject::tr("\"%1\" from %2 to %3")
             .arg(summary.columns[indices[axis]].name, number(summary.lower[std::size_t(axis)], 10),
                  number(summary.upper[std::size_t(axis)], 10))});
  }
  if (summary.nDuplicates >= 0)
    facts.append({QObject::tr("duplicates"), summary.nDuplicates == 0
                                                 ? QObject::tr("none")
                                                 : QObject::tr("%1 at the place of another record")
                                                       .arg(groupedText(summary.nDuplicates))});
  if (summary.grid)
    facts.append({QObject::tr("grid"), gridText(summary)});
}

QString notes(const TableSummary &summary)
{
  QStringList lines;
  if (summary.format.decimal == ',')
    lines << QObject::tr("Numbers have decimal commas: a job says \"decimal\": \",\".");
  for (const ColumnSummary &column : summary.columns) {
    if (!column.marks.isEmpty())
      lines << QObject::tr(
                   "\"%1\" in \"%2\" may stand for undefined values: a job lists such texts "
                   "in \"undefined\".")
                   .arg(column.marks.join(QStringLiteral("\", \"")), column.name);
    if (!column.limits.isEmpty())
      lines << QObject::tr(
                   "\"%1\" in \"%2\" tells values below a limit of detection: put numbers "
                   "into the file, such as half of the limit.")
                   .arg(column.limits.join(QStringLiteral("\", \"")), column.name);
    if (column.marks.isEmpty() && column.limits.isEmpty() &&
        column.getType() == ColumnSummary::MIXED)
      lines << QObject::tr("\"%1\" holds %2 texts, such as \"%3\", among its numbers.")
                   .arg(column.name, groupedText(column.nTexts), shortened(column.example, 24));
  }
  QString text;
  for (const QString &line : lines)
    text += '\n' + gap + hanging(line, gap.size());
  return text.isEmpty() ? text : '\n' + text;
}

/// A number, or a list of numbers.
QString valueText(const QJsonValue &value)
{
  if (!value.isArray())
    return value.isString() ? value.toString() : number(value.toDouble());
  QStringList parts;
  for (const QJsonValue &part : value.toArray())
    parts << valueText(part);
  return '[' + parts.join(QStringLiteral(", ")) + ']';
}

}  // namespace

QString InfoText::table(const TableSummary &summary, const QString &shown)
{
  Facts facts = {{QObject::tr("format"), summary.formatName}};
  if (!summary.format.layer.isEmpty())
    facts.append({QObject::tr("layer"), summary.format.layer});
  facts.append({QObject::tr("reference"), referenceText(summary.reference)});
  facts.append({QObject::tr("records"), groupedText(summary.nRecords)});
  addPlaces(summary, facts);
  return shown + '\n' + factLines(facts) + QStringLiteral("\n\n") + fittingColumnTable(summary) +
         notes(summary);
}

QString InfoText::layers(const QList<TableLayer> &layers, const QString &shown)
{
  constexpr int nLeft = 2;
  QList<QStringList> rows;
  rows << QStringList{QObject::tr("layer"), QObject::tr("geometry"), QObject::tr("records")};
  for (const TableLayer &layer : layers)
    rows << QStringList{layer.name, layer.geometry,
                        layer.nRecords < 0 ? QString() : groupedText(layer.nRecords)};
  return QObject::tr("%1: %2 layers; one of them: orvenal info --layer NAME ...\n\n")
             .arg(shown, QString::number(layers.size())) +
         alignedRows(rows, nLeft);
}

QString InfoText::model(const NgmVModel &model, int nDimensions, const QString &shown)
{
  static const QStringList keys = {QStringLiteral("type"),    QStringLiteral("sill"),
                                   QStringLiteral("range"),   QStringLiteral("ranges"),
                                   QStringLiteral("azimuth"), QStringLiteral("dip"),
                                   QStringLiteral("pitch"),   QStringLiteral("parameter")};
  const QJsonObject json = modelToJson(model, nDimensions);
  const QJsonArray structures = json.value(QStringLiteral("structures")).toArray();
  QList<QStringList> rows = {QStringList()};
  for (int i = 0; i < structures.size(); ++i)
    rows << QStringList();
  for (const QString &name : keys) {
    const bool isUsed = std::any_of(structures.begin(), structures.end(), [&](const auto &item) {
      return item.toObject().contains(name);
    });
    if (!isUsed)
      continue;
    rows[0] << name;
    for (int i = 0; i < structures.size(); ++i) {
      const QJsonObject item = structures[i].toObject();
      rows[i + 1] << (item.contains(name) ? valueText(item.value(name)) : QString());
    }
  }
  const Facts facts = {{QObject::tr("variables"), QString::number(model.getNVariables())},
                       {QObject::tr("nugget"), json.contains(QStringLiteral("nugget"))
                                                   ? valueText(json.value(QStringLiteral("nugget")))
                                                   : QObject::tr("none")}};
  return QObject::tr("%1: a variogram model\n").arg(shown) + factLines(facts) +
         (structures.isEmpty() ? QString() : QStringLiteral("\n\n") + alignedRows(rows, 1));
}

QString InfoText::job(const Job &job, const QString &shown)
{
  Facts facts = {{QObject::tr("title"), job.title},
                 {QObject::tr("data"), job.data.shown},
                 {QObject::tr("variable"), job.variable.getLabel()}};
  for (const JobVariable &covariate : job.covariates)
    facts.append({QObject::tr("covariate"), covariate.getLabel()});
  if (!job.crs.isEmpty())
    facts.append({QObject::tr("reference"), SpatialReference::describe(job.crs)});
  if (job.variogram)
    facts.append({QObject::tr("variogram"), QObject::tr("computed")});
  if (job.fit)
    facts.append({QObject::tr("model"), QObject::tr("fitted to the variogram")});
  else if (job.hasModel)
    facts.append({QObject::tr("model"), Describe::model(job)});
  if (job.hasGrid)
    facts.append({QObject::tr("grid"), Describe::grid(job)});
  if (job.hasGrid || job.crossValidation)
    facts.append({QObject::tr("kriging"), Describe::method(job)});
  if (job.crossValidation)
    facts.append({QObject::tr("xvalid"), QObject::tr("cross-validated")});
  for (const QString &file : job.output.getFiles())
    facts.append({QObject::tr("output"), shownPath(file)});
  return QObject::tr("%1: a job; orvenal run does it\n").arg(shown) + factLines(facts);
}

}  // namespace orvenal
