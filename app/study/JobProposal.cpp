#include "app/study/JobProposal.h"

#include "app/base/NumberText.h"
#include "app/base/Suggestion.h"
#include "app/base/UsageError.h"
#include "app/console/TextTable.h"
#include "app/io/FieldParser.h"
#include "app/io/InputFile.h"
#include "app/io/SpatialReference.h"
#include "app/io/TableReader.h"
#include "app/study/GridLayout.h"
#include "app/study/Job.h"
#include "app/study/RunContext.h"
#include "app/study/TableStatistics.h"
#include "app/study/TableSummary.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QObject>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvenal {

namespace {

/// What the job is made of.
struct Findings
{
  TableSummary summary;
  QString file;   ///< as the job names it
  QString shown;  ///< name of the file
  int x = -1;
  int y = -1;
  int z = -1;
  int variable = -1;
  int line = -1;  ///< column of the boreholes, where there are several
  NbcStatMono statistics;

  bool is3D() const { return z >= 0; }
  const ColumnSummary &column(int index) const { return summary.columns[index]; }

  Extent getExtent() const
  {
    const std::size_t n = is3D() ? 3 : 2;
    return {{summary.lower.begin(), summary.lower.begin() + n},
            {summary.upper.begin(), summary.upper.begin() + n}};
  }
};

QString quoted(const QString &text)
{
  const QByteArray json = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
  return QString::fromUtf8(json.mid(1, json.size() - 2));
}

QString quotedAll(const QStringList &texts)
{
  QStringList parts;
  for (const QString &text : texts)
    parts << quoted(text);
  return '[' + parts.join(QStringLiteral(", ")) + ']';
}

QString list(const std::vector<double> &values)
{
  QStringList texts;
  for (const double value : values)
    texts << QString::number(value, 'g', 12);
  return '[' + texts.join(QStringLiteral(", ")) + ']';
}

/// Lines of comments of at most a hundred characters.
QString comment(const QString &text, int indent)
{
  constexpr int width = 96;
  const QString start = QString(indent, ' ') + QStringLiteral("// ");
  return start + wrapped(text, width - start.size()).join('\n' + start) + '\n';
}

/// The greatest number of two digits that is not below the value.
double roundAbove(double value)
{
  const double unit = std::pow(10., std::floor(std::log10(value)) - 1.);
  return QString::number(std::ceil(value / unit - 1e-9) * unit, 'g', 3).toDouble();
}

QStringList namesOf(const TableSummary &summary)
{
  QStringList names;
  for (const ColumnSummary &column : summary.columns)
    names << column.name;
  return names;
}

/// Names that are all numbers are values: the line of names is missing.
int findWish(const QString &wish, const char *option, int guess, const Findings &findings)
{
  if (wish.isEmpty())
    return guess;
  const int index = findings.summary.findColumn(wish);
  const QStringList names = namesOf(findings.summary);
  if (index < 0)
    throw UsageError(QObject::tr("--%1: %2 has no column \"%3\"%4; columns: %5")
                         .arg(QLatin1String(option), findings.shown, wish, didYouMean(wish, names),
                              quotedList(names)));
  return index;
}

/// Columns of the usual names may hold texts.
[[noreturn]] void failCoordinates(const Findings &findings)
{
  const QStringList names = namesOf(findings.summary);
  const CoordinateColumns named = guessCoordinates(names);
  for (const int index : {named.x, named.y}) {
    if (index >= 0 && findings.column(index).nTexts > 0)
      throw UsageError(
          QObject::tr("%1: the coordinates \"%2\" hold texts, such as \"%3\"")
              .arg(findings.shown, names[index], findings.column(index).example.simplified()));
  }
  throw UsageError(QObject::tr("%1: no two columns are named like coordinates; name them with --x "
                               "and --y; columns: %2")
                       .arg(findings.shown, quotedList(names)));
}

void findColumns(const JobWishes &wishes, Findings &findings)
{
  const CoordinateColumns guess = findings.summary.coordinates;
  findings.x = findWish(wishes.x, "x", guess.x, findings);
  findings.y = findWish(wishes.y, "y", guess.y, findings);
  findings.z = findWish(wishes.z, "z", guess.z, findings);
  if (findings.summary.nRecords == 0)
    TableReader::failEmpty(findings.shown);
  if (findings.x < 0 || findings.y < 0)
    failCoordinates(findings);
  findings.summary.coordinates.x = findings.x;
  findings.summary.coordinates.y = findings.y;
  findings.summary.coordinates.z = findings.z;
  findings.variable =
      findWish(wishes.variable, "variable", guessVariable(findings.summary), findings);
  if (findings.variable < 0)
    throw UsageError(QObject::tr("%1: there is no column of numbers that vary besides the "
                                 "coordinates; name the variable with --variable; columns: %2")
                         .arg(findings.shown, quotedList(namesOf(findings.summary))));
}

/// Texts and numbers that stand for undefined values: the usual ones, and those that were seen.
QStringList undefinedTexts(const Findings &findings)
{
  QStringList texts = TableFormat().undefined;
  for (const int index : {findings.x, findings.y, findings.z, findings.variable}) {
    if (index < 0)
      continue;
    for (const QString &mark : findings.column(index).marks + findings.column(index).limits) {
      if (!texts.contains(mark))
        texts << mark;
    }
  }
  return texts;
}

JobTable tableOf(const Findings &findings, const QString &path)
{
  JobTable table;
  table.file = path;
  table.shown = findings.shown;
  table.path = QStringLiteral("data");
  table.format = findings.summary.format;
  table.format.undefined = undefinedTexts(findings);
  table.x = findings.column(findings.x).name;
  table.y = findings.column(findings.y).name;
  table.z = findings.is3D() ? findings.column(findings.z).name : QString();
  return table;
}

/// The column of boreholes, when it tells some.
int findLine(const Findings &findings, const JobTable &table)
{
  constexpr int fewestLines = 3;
  const int column = findings.is3D() ? guessLine(namesOf(findings.summary)) : -1;
  if (column < 0)
    return -1;
  QSet<QString> lines;
  const auto reader = TableReader::open(table.file, table.shown, table.format);
  while (lines.size() < fewestLines && reader->next())
    lines << reader->getText(column);
  return lines.size() < fewestLines ? -1 : column;
}

NbcStatMono statisticsOf(const Findings &findings, const JobTable &table, Console &console)
{
  JobVariable variable;
  variable.column = findings.column(findings.variable).name;
  variable.name = variable.column;
  return computeTableStatistics(table, {variable}, RunContext{console})
      .variables.first()
      .statistics;
}

/// Variograms, a fit and kriging ask for values that differ at places that differ.
bool canBeKriged(const Findings &findings)
{
  constexpr int fewestPlaces = 10;
  const Extent extent = findings.getExtent();
  return findings.summary.nPlaces - findings.summary.nDuplicates >= fewestPlaces &&
         findings.statistics.getNDefined() >= fewestPlaces &&
         findings.statistics.getStandardDeviation() > 0. &&
         (extent.upper[0] > extent.lower[0] || extent.upper[1] > extent.lower[1]);
}

QString separatorLine(const TableFormat &format)
{
  QString text;
  if (!format.layer.isEmpty())
    text += QStringLiteral("    \"layer\": %1,\n").arg(quoted(format.layer));
  if (format.kind != TableFormat::CSV)
    return text;
  if (format.separator == ';' || format.separator == '\t' || format.separator == ' ')
    text += QStringLiteral("    \"separator\": %1,\n")
                .arg(quoted(QString(QLatin1Char(format.separator))));
  if (format.decimal == ',')
    text += QStringLiteral("    \"decimal\": \",\",\n");
  return text;
}

QString referenceLine(const Findings &findings)
{
  if (!findings.summary.reference.isEmpty())
    return QString();
  return comment(QObject::tr("\"crs\": \"EPSG:...\" would name the coordinate reference system; "
                             "outputs are then placed on the earth, and lengths have a unit."),
                 4);
}

QString undefinedPart(const Findings &findings)
{
  const QStringList texts = undefinedTexts(findings);
  const QStringList seen = texts.mid(TableFormat().undefined.size());
  QString text;
  if (!seen.isEmpty())
    text =
        comment(QObject::tr("%1 looks as if it stood for undefined values; take it from the list "
                            "if it does not.")
                    .arg(quotedList(seen)),
                4);
  if (std::any_of(seen.begin(), seen.end(), isBelowLimit))
    text += comment(QObject::tr("Values below a limit of detection are left out so, which makes "
                                "estimates too high; a number in the file, such as half of the "
                                "limit, keeps them."),
                    4);
  return text + QStringLiteral("    \"undefined\": %1\n").arg(quotedAll(texts));
}

QString dataPart(const Findings &findings)
{
  QString text = comment(QObject::tr("%1 samples of %2 columns, %3. The coordinates were chosen by "
                                     "the names of their columns.")
                             .arg(findings.summary.nRecords)
                             .arg(findings.summary.columns.size())
                             .arg(findings.summary.formatName),
                         2);
  if (areNamedLikeDegrees(findings.column(findings.x).name, findings.column(findings.y).name))
    text +=
        comment(QObject::tr("They look like degrees: distances are measured as if a degree of "
                            "longitude were one of latitude. Projected coordinates are better."),
                2);
  if (findings.summary.nDuplicates > 0)
    text += comment(
        QObject::tr("Samples at the place of another one: %1. Without a nugget their systems "
                    "cannot be solved; \"duplicates\": \"average\" takes their means.")
            .arg(findings.summary.nDuplicates),
        2);
  text += QStringLiteral("  \"data\": {\n    \"file\": %1,\n").arg(quoted(findings.file));
  text +=
      QStringLiteral("    \"x\": %1,\n    \"y\": %2,\n")
          .arg(quoted(findings.column(findings.x).name), quoted(findings.column(findings.y).name));
  if (findings.is3D())
    text += QStringLiteral("    \"z\": %1,\n").arg(quoted(findings.column(findings.z).name));
  return text + separatorLine(findings.summary.format) + referenceLine(findings) +
         undefinedPart(findings) + QStringLiteral("  },\n");
}

QString otherColumns(const Findings &findings)
{
  QStringList others;
  for (int i = 0; i < findings.summary.columns.size(); ++i) {
    const ColumnSummary &column = findings.column(i);
    const bool isUsed =
        i == findings.x || i == findings.y || i == findings.z || i == findings.variable;
    if (isUsed || !holdsNumbers(column))
      continue;
    const QStringList undefined = column.marks + column.limits;
    const QString marks =
        undefined.isEmpty()
            ? QString()
            : QObject::tr("; \"undefined\" then has to list %1").arg(quotedList(undefined));
    others << QObject::tr("%1 (%2 to %3%4)")
                  .arg(column.name.simplified(), numberText(column.minimum),
                       numberText(column.maximum), marks);
  }
  return others.isEmpty()
             ? QObject::tr("There is no other column of numbers.")
             : QObject::tr("Other columns of numbers: %1.").arg(others.join(QStringLiteral(", ")));
}

QString variablePart(const Findings &findings)
{
  constexpr double manifestSkewness = 1.;
  QString text = '\n' + comment(otherColumns(findings), 2);
  const NbcStatMono &statistics = findings.statistics;
  if (statistics.getSkewness() > manifestSkewness && statistics.getMinimum() > 0.)
    text += comment(QObject::tr("The values are above 0 and skewed (skewness %1): \"transform\": "
                                "\"log\" kriges their logarithms, which suit kriging better.")
                        .arg(numberText(statistics.getSkewness())),
                    2);
  return text + QStringLiteral("  \"variable\": { \"column\": %1 },\n")
                    .arg(quoted(findings.column(findings.variable).name));
}

/// How far a variogram may reach so that its pairs take seconds: samples that are spread evenly
/// over their box have about so many pairs. Infinite when the box is flat.
double affordableReach(const Findings &findings)
{
  constexpr double mostPairs = 2e9;
  const Extent extent = findings.getExtent();
  const std::size_t n = extent.lower.size();
  double size = 1.;
  for (std::size_t axis = 0; axis < n; ++axis)
    size *= extent.upper[axis] - extent.lower[axis];
  const double ball = n > 2 ? 4. / 3. * M_PI : M_PI;
  const double nSamples = double(findings.summary.nPlaces);
  return size > 0. ? std::pow(2. * mostPairs / (nSamples * nSamples) * size / ball, 1. / double(n))
                   : std::numeric_limits<double>::infinity();
}

QString variogramLine(const Findings &findings)
{
  constexpr int nLags = 16;
  const Extent extent = findings.getExtent();
  const double usualReach =
      std::hypot(extent.upper[0] - extent.lower[0], extent.upper[1] - extent.lower[1]) / 5.;
  const double reach = affordableReach(findings);
  if (reach >= usualReach)
    return comment(
               QObject::tr("Variogram of all pairs; \"lag\" and \"lags\" are left to the program. "
                           "\"regular\": 4 computes four directions."),
               2) +
           QStringLiteral("  \"variogram\": {},\n\n");
  return comment(QObject::tr("Variogram of all pairs, as far as %1 samples allow within a minute; "
                             "the time grows with the square of the distance. \"regular\": 4 "
                             "computes four directions.")
                     .arg(groupedText(findings.summary.nPlaces)),
                 2) +
         QStringLiteral("  \"variogram\": { \"lag\": %1, \"lags\": %2 },\n\n")
             .arg(QString::number(roundAbove(reach / nLags), 'g', 12), QString::number(nLags));
}

QString variogramPart(const Findings &findings)
{
  return '\n' + variogramLine(findings) +
         comment(QObject::tr("The model is fitted to it. Look at the picture before you use it; "
                             "\"model\" in place of \"fit\" gives your own."),
                 2) +
         QStringLiteral("  \"fit\": { \"structures\": [\"Spherical\"] },\n");
}

QString gridPart(const Findings &findings)
{
  const int nAlongLongest = findings.is3D() ? 40 : 80;
  const Extent extent = findings.getExtent();
  const GridLayout layout = layGrid(extent, roundCell(extent, nAlongLongest));
  return '\n' +
         comment(QObject::tr("A grid over the samples in round numbers; \"origin\" is the "
                             "centre of the first node."),
                 2) +
         QStringLiteral("  \"grid\": { \"origin\": %1, \"cell\": %2, \"nodes\": %3 },\n")
             .arg(list(layout.origin), list(layout.cell), list(layout.nodes));
}

QString neighborhoodPart(const Findings &findings)
{
  const Extent extent = findings.getExtent();
  const auto length = [&](std::size_t axis) { return extent.upper[axis] - extent.lower[axis]; };
  const double radius = roundAbove(0.5 * std::hypot(length(0), length(1)));
  const QString text =
      '\n' + comment(QObject::tr("Each node uses the 16 samples nearest to it, as far as half the "
                                 "diagonal of the area."),
                     2);
  if (!findings.is3D())
    return text + QStringLiteral(
                      "  \"neighborhood\": { \"type\": \"moving\", \"radius\": %1, "
                      "\"maximum\": 16 },\n")
                      .arg(radius, 0, 'g', 12);
  const double vertical = length(2) > 0. ? roundAbove(0.5 * length(2)) : radius;
  const QString radii = list({radius, radius, vertical});
  if (findings.line < 0)
    return text + QStringLiteral(
                      "  \"neighborhood\": { \"type\": \"moving\", \"radii\": %1, "
                      "\"maximum\": 16 },\n")
                      .arg(radii);
  return text +
         comment(QObject::tr("At most 4 of them are of one borehole: those of a hole tell much the "
                             "same."),
                 2) +
         QStringLiteral(
             "  \"neighborhood\": {\n    \"type\": \"moving\", \"radii\": %1, \"maximum\": 16,\n"
             "    \"lines\": { \"column\": %2, \"perLine\": 4 }\n  },\n")
             .arg(radii, quoted(findings.column(findings.line).name));
}

QString crossValidationPart(const Findings &findings)
{
  if (findings.line < 0)
    return '\n' +
           comment(QObject::tr("Every sample is estimated from the others, to see how good model "
                               "and neighborhood are."),
                   2) +
           QStringLiteral("  \"crossValidation\": {},\n\n");
  return '\n' +
         comment(QObject::tr("Every sample is estimated from those of the other boreholes, to see "
                             "how good model and neighborhood are."),
                 2) +
         QStringLiteral("  \"crossValidation\": { \"leaveOut\": \"line\", \"line\": %1 },\n\n")
             .arg(quoted(findings.column(findings.line).name));
}

QString outputPart(const Findings &findings)
{
  QString text = QStringLiteral(
      "  \"output\": {\n    \"directory\": \"out\",\n"
      "    \"data\": { \"map\": \"base-map.png\", \"histogram\": \"histogram.png\" },\n"
      "    \"variogram\": { \"picture\": \"variogram.png\" },\n"
      "    \"fit\": { \"model\": \"model.json\" },\n"
      "    \"crossValidation\": { \"table\": \"xvalid.csv\", \"picture\": \"xvalid.png\", "
      "\"map\": \"errors.png\" },\n");
  text += findings.is3D() ? QStringLiteral("    \"grid\": [\"grid.csv\"],\n")
                          : QStringLiteral("    \"grid\": [\"grid.csv\", \"grid.tif\"],\n");
  text += QStringLiteral(
      "    \"maps\": { \"estimate\": \"estimate.png\", \"deviation\": \"deviation.png\" },\n");
  return text + QStringLiteral("    \"report\": \"report.html\"\n  }\n");
}

QString statisticsOnly()
{
  return '\n' +
         comment(QObject::tr("There are too few samples, or values that differ, for variograms and "
                             "kriging; this job prints statistics."),
                 2) +
         QStringLiteral("  \"output\": { \"directory\": \"out\", \"report\": \"report.html\" }\n");
}

QString studyParts(const Findings &findings)
{
  if (!canBeKriged(findings))
    return statisticsOnly();
  return variogramPart(findings) + gridPart(findings) + neighborhoodPart(findings) +
         crossValidationPart(findings) +
         comment(QObject::tr("The format of the grid goes by the ending of its files."), 2) +
         outputPart(findings);
}

}  // namespace

QString proposeJob(const QString &dataFile, const QDir &folder, const JobWishes &wishes,
                   Console &console)
{
  requireInput(dataFile);
  const QString path = QFileInfo(dataFile).absoluteFilePath();
  Findings findings;
  findings.shown = dataFile;
  findings.file = folder.relativeFilePath(path);
  findings.summary = summarizeTable(path, dataFile, TableFormat());
  findColumns(wishes, findings);
  const JobTable table = tableOf(findings, path);
  findings.line = findLine(findings, table);
  findings.statistics = statisticsOf(findings, table, console);
  const Extent extent = readExtent(table);
  std::copy(extent.lower.begin(), extent.lower.end(), findings.summary.lower.begin());
  std::copy(extent.upper.begin(), extent.upper.end(), findings.summary.upper.begin());
  const QString title =
      QObject::tr("%1 in %2")
          .arg(findings.column(findings.variable).name, QFileInfo(path).completeBaseName());
  return comment(
             QObject::tr("A job to start with; orvenal help job describes all that may stand in "
                         "it. Comments like this one are allowed anywhere."),
             0) +
         QStringLiteral("{\n  \"title\": %1,\n\n").arg(quoted(title)) + dataPart(findings) +
         variablePart(findings) + studyParts(findings) + QStringLiteral("}\n");
}

}  // namespace orvenal
