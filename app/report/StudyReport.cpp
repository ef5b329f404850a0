#include "app/report/StudyReport.h"

#include "app/base/NumberText.h"
#include "app/io/SpatialReference.h"
#include "app/plot/Picture.h"
#include "app/plot/SampleMapPicture.h"
#include "app/report/Describe.h"
#include "app/report/StudyResult.h"
#include "app/report/Versions.h"
#include "app/study/Compass.h"
#include "basic/base/NbbHtml.h"
#include "basic/base/NbbHtmlTable.h"
#include "basic/base/NbbSysInfo.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QtEndian>

namespace orvenal {

namespace {

using Rows = QVector<QPair<QString, QString>>;

const char *const style = R"(
:root { color-scheme: light; }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 62rem; padding: 1rem 1.25rem 3rem; background: #fff;
  color: #1c2733; font: 1rem/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif; }
h1 { font-size: 1.7rem; line-height: 1.2; margin: .5rem 0 .25rem; }
h2 { font-size: 1.2rem; margin: 2rem 0 .5rem; border-bottom: 1px solid #cfd8e3;
  padding-bottom: .2rem; }
h3 { font-size: 1rem; margin: 1.25rem 0 .5rem; }
p { margin: .4rem 0; }
.lead { color: #4a5a6a; }
figure { margin: 1rem 0; }
figure img { max-width: 100%; height: auto; }
#variograms > figure { max-width: 44rem; }
.maps { display: flex; flex-wrap: wrap; gap: 1rem; margin-top: 1rem; }
.maps figure { flex: 1 1 22rem; margin: 0; }
.maps img { width: 100%; height: auto; }
figcaption { font-size: .85rem; color: #4a5a6a; }
.scroll { overflow-x: auto; margin: .5rem 0; }
#model .scroll td { white-space: nowrap; }
table { border-collapse: collapse; font-size: .9rem; font-variant-numeric: tabular-nums; }
th, td { padding: .25rem .6rem; border: 1px solid #dbe3ec; vertical-align: top; }
th { font-weight: 600; }
pre { overflow-x: auto; background: #f4f7fa; border: 1px solid #dbe3ec; padding: .75rem;
  font: .8rem/1.4 "DejaVu Sans Mono", monospace; }
.warning { border-left: 4px solid #b35900; background: #fff6ec; padding: .4rem .75rem; }
.hash { overflow-wrap: anywhere; font: .75rem "DejaVu Sans Mono", monospace; }
@media screen and (max-width: 40rem) {
  figure.wide { overflow-x: auto; }
  figure.wide img { max-width: none; width: 44rem; }
}
@media print {
  body { max-width: none; padding: 0; font-size: 10pt; }
  h2 { break-after: avoid; }
  figure, table, pre { break-inside: avoid; }
  .maps figure { flex-basis: 40%; }
  pre { white-space: pre-wrap; }
}
)";

QString scrolling(const NbbHtmlTable &table)
{
  return QStringLiteral("<div class=\"scroll\">\n") + table.toHtml() + QStringLiteral("</div>\n");
}

QString rowsTable(const Rows &rows)
{
  NbbHtmlTable table;
  QStringList names;
  for (const auto &row : rows) {
    names << row.first;
    table.addRow({row.second});
  }
  table.setRowHeader(names);
  return scrolling(table);
}

QString section(const QString &id, const QString &title, const QString &content)
{
  return QStringLiteral("<section id=\"") + id + QStringLiteral("\">\n") +
         NbbHtml::title(title, 2) + '\n' + content + QStringLiteral("</section>\n");
}

QString paragraph(const QString &text, const QString &cssClass = QString())
{
  const QString attribute =
      cssClass.isEmpty() ? QString() : QStringLiteral(" class=\"") + cssClass + '"';
  return "<p" + attribute + '>' + NbbHtml::toHtml(text) + "</p>\n";
}

/// Width at which a picture has the size of its layout: its header says how many pixels it has.
int shownWidth(const QByteArray &png)
{
  constexpr int place = 16;
  return int(qFromBigEndian<quint32>(png.constData() + place) / pixelsPerUnit);
}

/// A picture with its caption. One with several plot areas can be moved sideways on a narrow
/// screen.
QString figure(const QByteArray &png, const QString &caption)
{
  if (png.isEmpty())
    return QString();
  constexpr int wide = 800;
  const QString text = NbbHtml::toHtml(caption);
  const int width = shownWidth(png);
  return QStringLiteral("<figure%1><img width=\"%2\" alt=\"")
             .arg(width > wide ? QStringLiteral(" class=\"wide\"") : QString(),
                  QString::number(width)) +
         text + QStringLiteral("\" src=\"data:image/png;base64,") +
         QString::fromLatin1(png.toBase64()) + QStringLiteral("\"><figcaption>") + text +
         QStringLiteral("</figcaption></figure>\n");
}

QString maps(const StudyResult &result)
{
  if (result.estimateMap.isEmpty() && result.deviationMap.isEmpty())
    return QString();
  const bool is3D = result.job.getNDimensions() > 2;
  const QString caption = is3D ? QObject::tr("%1, sections") : QStringLiteral("%1");
  return QStringLiteral("<div class=\"%1\">\n")
             .arg(is3D ? QStringLiteral("sections") : QStringLiteral("maps")) +
         figure(result.estimateMap, caption.arg(Describe::estimateLabel(result.job))) +
         figure(result.deviationMap, caption.arg(Describe::deviationLabel(result.job))) +
         QStringLiteral("</div>\n");
}

QString samplePictures(const StudyResult &result)
{
  return figure(result.dataMap,
                QObject::tr("The samples, coloured by %1").arg(Describe::sampleLabel(result.job))) +
         figure(result.dataHistogram,
                QObject::tr("Histogram of %1, and its values on Gaussian probabilities")
                    .arg(Describe::sampleLabel(result.job)));
}

QString warnings(const StudyResult &result)
{
  QString html;
  for (const QString &warning : result.warnings)
    html += paragraph(QObject::tr("Warning: ") + warning, QStringLiteral("warning"));
  return html;
}

QString data(const StudyResult &result)
{
  const Job &job = result.job;
  const Samples &samples = result.samples;
  static const char *const transforms[] = {"column \"%1\"", "natural logarithm of column \"%1\"",
                                           "square root of column \"%1\""};
  const QString transform = QObject::tr(transforms[int(job.variable.transform)]);
  Rows rows = {{QObject::tr("Variable"), Describe::sampleLabel(job)},
               {QObject::tr("Values"), transform.arg(job.variable.column)},
               {QObject::tr("Samples"), QString::number(samples.getCount())},
               {QObject::tr("Undefined values"), QString::number(samples.nUndefined)},
               {QObject::tr("Samples at the place of another"), describeDuplicates(job, samples)}};
  if (!job.crs.isEmpty())
    rows.append({QObject::tr("Coordinate reference system"), SpatialReference::describe(job.crs)});
  if (result.estimation)
    rows.append({QObject::tr("Grid"), Describe::grid(job)});
  if (result.estimation && job.mask)
    rows.append(
        {QObject::tr("Mask"), QObject::tr("cells that hold a point of %1; %2 of its points "
                                          "are outside the grid")
                                  .arg(job.mask->shown, QString::number(result.nMaskOutside))});
  return rowsTable(rows);
}

QString statistics(const StudyResult &result)
{
  NbbHtmlTable table;
  table.setAlignCell(NbbHtmlTable::ALIGN_RIGHT);
  table.setColumnHeader(Describe::statisticsHeader());
  QStringList names;
  for (int i = 0; i < result.job.getNVariables(); ++i) {
    names << result.job.getVariable(i).getLabel();
    table.addRow(Describe::statisticsRow(result.variableStatistics.getConstUnivariateStats(i)));
  }
  if (result.estimation) {
    names << Describe::estimateLabel(result.job) << Describe::deviationLabel(result.job);
    table.addRow(Describe::statisticsRow(result.estimation->estimate));
    table.addRow(Describe::statisticsRow(result.estimation->deviation));
  }
  table.setRowHeader(names);
  return scrolling(table) + paragraph(QObject::tr("Variance and standard deviation are those of "
                                                  "the population (divided by n)."),
                                      QStringLiteral("lead"));
}

/// A table whose first row is its header.
QString headedTable(const QList<QStringList> &rows)
{
  NbbHtmlTable table;
  table.setAlignCell(NbbHtmlTable::ALIGN_RIGHT);
  table.setColumnHeader(rows.first());
  for (const QStringList &row : rows.mid(1))
    table.addRow(row);
  return scrolling(table);
}

QString variograms(const StudyResult &result)
{
  const Variography &variography = result.variography;
  QString picture = figure(result.variogramPicture, variography.curveName);
  if (variography.nVariables > 1)  // a matrix may be as wide as the page
    picture = QStringLiteral("<div>\n") + picture + QStringLiteral("</div>\n");
  return picture + QStringLiteral("<div class=\"maps\">\n") +
         figure(result.variogramMap, QObject::tr("Variogram map")) +
         figure(result.variogramCloud, QObject::tr("Variogram cloud")) +
         QStringLiteral("</div>\n") + headedTable(variogramRows(variography, result.job)) +
         paragraph(QObject::tr("Lag %1. Lags without pairs are left out.")
                       .arg(lengthText(variography.lag, result.job.lengthUnit)),
                   QStringLiteral("lead"));
}

QString crossValidation(const StudyResult &result)
{
  return figure(result.crossValidationPicture,
                QObject::tr("Values against estimates, and standardized errors")) +
         figure(result.crossValidationMap,
                QObject::tr("Map of the standardized errors; triangles are beyond %1")
                    .arg(QString::number(largestUsualError))) +
         rowsTable(crossValidationRows(result)) +
         paragraph(QObject::tr("Errors are estimates less values; standardized ones are divided by "
                               "the kriging standard deviation. A fitting model has a mean error "
                               "near 0 and a root mean squared standardized error near 1."),
                   QStringLiteral("lead"));
}

/// A row per axis of the structure's frame: range, direction and vector; the sill before them when
/// there is one variable. In two dimensions the third axis of an anisotropic structure is shown
/// too; it has no range.
void addStructure(const NgmVModel &model, int index, const Job &job, NbbHtmlTable &table)
{
  const NgmAVStruct &structure = model.getStructure(index);
  const NbgVector3D ranges = structure.getPracticalRanges();
  const NbgRotation &rotation = structure.getRotation();
  const NbgVector3D axes[] = {rotation.getAxisX(), rotation.getAxisY(), rotation.getAxisZ()};
  const char *const names[] = {"U", "V", "W"};
  QString name = structure.getType().getLabel();
  if (structure.getNAuxiliaryParameters() > 0)
    name += QObject::tr(", %1 %2").arg(structure.getAuxiliaryName(0),
                                       numberText(structure.getAuxiliaryValue(0)));
  const int nDimensions = job.getNDimensions();
  const int nAxes = structure.isIsotropic() ? nDimensions : 3;
  for (int axis = 0; axis < nAxes; ++axis) {
    QStringList row = {axis == 0 ? name : QString()};
    if (job.getNVariables() == 1)
      row << (axis == 0 ? numberText(model.getCoregionalisationMatrix(index)(0, 0)) : QString());
    row << QLatin1String(names[axis])
        << (axis < nDimensions ? lengthText(ranges[axis], job.lengthUnit) : QString())
        << Compass::describe(axes[axis], axis < 2 ? nDimensions : 3)
        << Describe::vector(axes[axis]);
    table.addRow(row);
  }
}

QString structures(const NgmVModel &model, const Job &job)
{
  const bool hasSills = job.getNVariables() == 1;
  QStringList header = {QObject::tr("Structure")};
  if (hasSills)
    header << QObject::tr("Sill");
  header << QObject::tr("Axis") << QObject::tr("Practical range") << QObject::tr("Direction")
         << QObject::tr("Axis vector (east, north, up)");
  NbbHtmlTable table;
  table.setColumnHeader(header);
  if (hasSills && model.hasNugget())
    table.addRow({QObject::tr("Nugget"), numberText(model.getNugget(0, 0)), QString(), QString(),
                  QString(), QString()});
  for (int index = 0; index < model.getNStructures(); ++index)
    addStructure(model, index, job, table);
  return scrolling(table);
}

QString sills(const NgmVModel &model, const Job &job)
{
  if (!model.isStrictStationary())
    return paragraph(QObject::tr("A model without a sill: a structure \"Power\" reaches the value "
                                 "given as its sill at its range, and rises on."),
                     QStringLiteral("lead"));
  if (job.getNVariables() == 1)
    return paragraph(QObject::tr("Total sill %1.").arg(numberText(model.getC0IJ(0, 0))),
                     QStringLiteral("lead"));
  return NbbHtml::title(QObject::tr("Matrices of sills"), 3) + '\n' + headedTable(sillRows(job)) +
         paragraph(QObject::tr("A linear model of coregionalization: each structure has a matrix "
                               "of sills, which is positive semi-definite, so that the model is "
                               "admissible."),
                   QStringLiteral("lead"));
}

QString model(const StudyResult &result)
{
  const NgmVModel &model = result.job.model;
  QString fit;
  if (result.fit)
    fit = paragraph(QObject::tr("Fitted to the experimental variograms; misfit %1.")
                        .arg(numberText(result.fit->score)));
  return fit + structures(model, result.job) + sills(model, result.job) +
         paragraph(QObject::tr("Ranges are practical ranges: the distance at which a structure "
                               "reaches its sill, or 95% of it when it never does. Azimuths run "
                               "clockwise from north, dips downward."),
                   QStringLiteral("lead"));
}

QString outcome(const StudyResult &result)
{
  QString html = rowsTable(Describe::outcome(result));
  if (!result.estimation->failures.isEmpty())
    html += QStringLiteral("<pre>") + result.estimation->failures.toHtmlEscaped() +
            QStringLiteral("</pre>\n");
  return html;
}

QString outputs(const StudyResult &result)
{
  NbbHtmlTable table;
  const QDir folder = QFileInfo(result.job.file).absoluteDir();
  for (const QString &file : result.job.output.getFiles())
    table.addRow({folder.relativeFilePath(file)});
  return scrolling(table) +
         paragraph(
             QObject::tr("In the CSV file the first axis varies fastest, masked nodes are left "
                         "out and undefined values are empty fields. Band 1 of the GeoTIFF is "
                         "the estimate, band 2 its standard deviation; NaN is no data."),
             QStringLiteral("lead"));
}

QString hashOf(const QString &path)
{
  QFile file(path);
  QCryptographicHash hash(QCryptographicHash::Sha256);
  if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
    return QString();
  return QString::fromLatin1(hash.result().toHex());
}

void addInput(const QString &shown, const QString &path, NbbHtmlTable &table)
{
  NbbHtmlTable::CellProperties html;
  html.isHtml = true;
  table.addRow({shown, NbbSysInfo::getStringSize(QFileInfo(path).size()),
                QStringLiteral("<span class=\"hash\">") + hashOf(path) + QStringLiteral("</span>")},
               {{}, {}, html});
}

/// What it takes to repeat the study: the program, the inputs to the byte, and the job.
QString repetition(const StudyResult &result)
{
  const Job &job = result.job;
  NbbHtmlTable inputs;
  inputs.setColumnHeader({QObject::tr("Input"), QObject::tr("Size"), QObject::tr("SHA-256")});
  addInput(job.data.shown, job.data.file, inputs);
  for (const std::optional<JobTable> &table : {job.mask, job.gridValues, job.faults}) {
    if (table)
      addInput(table->shown, table->file, inputs);
  }
  if (!job.modelFile.isEmpty())
    addInput(QFileInfo(job.modelFile).fileName(), job.modelFile, inputs);
  return paragraph(QObject::tr("Save the job beside its inputs and run: orvenal run %1")
                       .arg(QFileInfo(job.file).fileName())) +
         QStringLiteral("<pre id=\"job\">") + QString::fromUtf8(job.text).toHtmlEscaped() +
         QStringLiteral("</pre>\n") + scrolling(inputs) + rowsTable(allVersions());
}

QString run(const StudyResult &result)
{
  Rows rows = {{QObject::tr("Date"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)}};
  if (result.estimation)
    rows.append({QObject::tr("Threads"), QString::number(result.estimation->threads)});
  for (const auto &step : result.seconds)
    rows.append({step.first, durationText(step.second)});
  return rowsTable(rows);
}

QString lead(const StudyResult &result)
{
  const QString nSamples = groupedText(result.samples.getCount() - result.samples.nUndefined);
  if (!result.estimation)
    return QObject::tr("%1 in %2 samples.").arg(result.job.variable.name, nSamples);
  return QObject::tr("%1 of %2: %3 nodes from %4 samples.")
      .arg(Describe::method(result.job), result.job.variable.name,
           groupedText(result.estimation->grid.getNEstimated()), nSamples);
}

}  // namespace

QByteArray studyReport(const StudyResult &result)
{
  const QString title = NbbHtml::toHtml(result.job.title);
  QString html = QStringLiteral(
                     "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n"
                     "<meta charset=\"utf-8\">\n"
                     "<meta name=\"viewport\" "
                     "content=\"width=device-width, initial-scale=1\">\n<title>") +
                 title + QStringLiteral("</title>\n<style>") + QLatin1String(style) +
                 QStringLiteral("</style>\n</head>\n<body>\n");
  html += NbbHtml::title(result.job.title, 1) + '\n' +
          paragraph(lead(result), QStringLiteral("lead")) + warnings(result) + maps(result);
  html += section(QStringLiteral("statistics"), QObject::tr("Statistics"), statistics(result));
  html +=
      section(QStringLiteral("data"), QObject::tr("Data"), data(result) + samplePictures(result));
  if (!result.variography.isEmpty())
    html += section(QStringLiteral("variograms"), QObject::tr("Experimental variograms"),
                    variograms(result));
  if (result.job.hasModel)
    html += section(QStringLiteral("model"), QObject::tr("Variogram model"), model(result));
  if (!result.crossValidation.isEmpty())
    html += section(QStringLiteral("cross-validation"), QObject::tr("Cross-validation"),
                    crossValidation(result));
  if (result.estimation) {
    html += section(QStringLiteral("neighborhood"), QObject::tr("Neighborhood"),
                    rowsTable(Describe::neighborhood(result.job)));
    html += section(QStringLiteral("outcome"), QObject::tr("Outcome"), outcome(result));
  }
  html += section(QStringLiteral("files"), QObject::tr("Files"), outputs(result));
  html += section(QStringLiteral("repeat"), QObject::tr("To repeat it"), repetition(result));
  html += section(QStringLiteral("run"), QObject::tr("This run"), run(result));
  html += QStringLiteral("</body>\n</html>\n");
  return html.toUtf8();
}

}  // namespace orvenal
