#include "app/report/StudyReport.h"

#include "app/base/NumberText.h"
#include "app/io/SpatialReference.h"
#include "app/plot/SampleMapPicture.h"
#include "app/report/Describe.h"
#include "app/report/ReportPage.h"
#include "app/report/StudyResult.h"
#include "app/report/Versions.h"
#include "app/study/Compass.h"
#include "basic/base/NbbHtml.h"
#include "basic/base/NbbHtmlTable.h"
#include "basic/base/NbbSysInfo.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "geos/vmodel/NgmAVStruct.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <algorithm>

namespace orvenal {

using namespace ReportPage;

namespace {

/// In the few digits of a sentence.
QString inWords(double value)
{
  constexpr int digits = 4;
  return QString::number(value, 'g', digits);
}

QString withUnit(const QString &text, const QString &unit)
{
  return unit.isEmpty() ? text : text + ' ' + unit;
}

/// "1.5 and 4.25 mg/kg"
QString endsOf(const NbcStatMono &statistics, const QString &unit)
{
  return statistics.getNDefined() == 0 ? QObject::tr("nothing")
                                       : withUnit(QObject::tr("%1 and %2")
                                                      .arg(inWords(statistics.getMinimum()),
                                                           inWords(statistics.getMaximum())),
                                                  unit);
}

/// The results in two sentences.
QString summary(const StudyResult &result)
{
  const QString unit = result.job.variable.unit;
  QStringList sentences;
  if (result.estimation && result.estimation->estimate.getNDefined() > 0)
    sentences << QObject::tr(
                     "Estimates lie between %1, on average at %2; their kriging standard "
                     "deviations between %3.")
                     .arg(endsOf(result.estimation->estimate, unit),
                          inWords(result.estimation->estimate.getMean()),
                          endsOf(result.estimation->deviation, unit));
  if (result.crossValidation.getNEstimated() > 0) {
    const XValRes &means = result.crossValidation.means;
    sentences << QObject::tr(
                     "At the samples, left out in turn, they are off by %1 "
                     "(root mean square): %2 times what the standard deviations say.")
                     .arg(withUnit(inWords(means.rootSquaredError), unit),
                          QString::number(means.rootSquaredStandardizedError, 'g', 3));
  }
  return paragraph(sentences.join(' '));
}

QString maps(const StudyResult &result)
{
  if (result.estimateMap.isEmpty() && result.deviationMap.isEmpty())
    return QString();
  const Job &job = result.job;
  const bool is3D = job.getNDimensions() > 2;
  const QString caption = is3D ? QObject::tr("%1, sections") : QStringLiteral("%1");
  const QString seen =
      is3D ? QObject::tr("Sections; values between %1") : QObject::tr("Map; values between %1");
  return QStringLiteral("<div class=\"%1\">\n")
             .arg(is3D ? QStringLiteral("sections") : QStringLiteral("maps")) +
         figure(result.estimateMap, caption.arg(Describe::estimateLabel(job)),
                seen.arg(endsOf(result.estimation->estimate, job.variable.unit))) +
         figure(result.deviationMap, caption.arg(Describe::deviationLabel(job)),
                seen.arg(endsOf(result.estimation->deviation, job.variable.unit))) +
         QStringLiteral("</div>\n");
}

QString samplePictures(const StudyResult &result)
{
  const QString label = Describe::sampleLabel(result.job);
  const QString values = QObject::tr("%1 values between %2")
                             .arg(groupedText(result.sampleStatistics.getNDefined()),
                                  endsOf(result.sampleStatistics, result.job.variable.unit));
  return figure(result.dataMap, QObject::tr("The samples, coloured by %1").arg(label),
                QObject::tr("Map of the places of the samples; %1").arg(values)) +
         figure(result.dataHistogram,
                QObject::tr("Histogram of %1, and its values on Gaussian probabilities").arg(label),
                QObject::tr("Histogram and normal-probability plot; %1").arg(values));
}

QString warnings(const StudyResult &result)
{
  QString html;
  for (const QString &warning : result.warnings)
    html += paragraph(QObject::tr("Warning: ") + warning, QStringLiteral("warning"));
  return html.isEmpty() ? paragraph(QObject::tr("There were no warnings.")) : html;
}

/// The box around coordinates: "x 1 to 2 m, y 3 to 4 m".
QString extentText(const NbgBox &box, const Job &job)
{
  const NbgVector3D low = box.getLowerLeftCorner();
  const NbgVector3D high = box.getUpperRightCorner();
  static const char *const names[] = {"x", "y", "z"};
  QStringList parts;
  for (int axis = 0; axis < job.getNDimensions(); ++axis)
    parts << QObject::tr("%1 %2 to %3")
                 .arg(QLatin1String(names[axis]), Describe::coordinate(low[axis]),
                      Describe::coordinate(high[axis]));
  return parts.join(QStringLiteral(", ")) +
         (job.lengthUnit.isEmpty() ? QString() : ' ' + job.lengthUnit);
}

QString extentOf(const Samples &samples, const Job &job)
{
  NbgBox box;
  for (std::size_t i = 0; i < samples.x.size(); ++i)
    box.extendWith(NbgVector3D(samples.x[i], samples.y[i], samples.z.empty() ? 0. : samples.z[i]));
  return extentText(box, job);
}

QString columnText(const Column &column)
{
  static const char *const transforms[] = {"column \"%1\"", "natural logarithm of column \"%1\"",
                                           "square root of column \"%1\""};
  return QObject::tr(transforms[int(column.transform)]).arg(column.column);
}

void addGrid(const StudyResult &result, Rows &rows)
{
  const Job &job = result.job;
  NbgBox box;
  job.grid.updateBoundingBox(box);
  QStringList first;
  for (int axis = 0; axis < job.getNDimensions(); ++axis)
    first << Describe::coordinate(job.grid.getOriginCentered()[axis]);
  rows.append({QObject::tr("Grid"), Describe::grid(job)});
  rows.append({QObject::tr("First node"),
               QObject::tr("(%1), the centre of its cell").arg(first.join(QStringLiteral(", ")))});
  rows.append({QObject::tr("Extent of the cells"), extentText(box, job)});
  if (job.mask)
    rows.append({QObject::tr("Mask"), QObject::tr("cells that hold a point of %1; %2 of its points "
                                                  "are outside the grid")
                                          .arg(job.mask->shown, groupedText(result.nMaskOutside))});
}

QString data(const StudyResult &result)
{
  const Job &job = result.job;
  const Samples &samples = result.samples;
  Rows rows = {{QObject::tr("File"), job.data.shown},
               {QObject::tr("Variable"), Describe::sampleLabel(job)},
               {QObject::tr("Values"), columnText(job.variable)}};
  for (const JobVariable &covariate : job.covariates)
    rows.append({QObject::tr("Covariate"),
                 QObject::tr("%1, %2").arg(covariate.getLabel(), columnText(covariate))});
  rows += Rows{{QObject::tr("Samples"), groupedText(samples.getCount())},
               {QObject::tr("Undefined values"), groupedText(samples.nUndefined)},
               {QObject::tr("Samples at the place of another"), describeDuplicates(job, samples)},
               {QObject::tr("Extent of the samples"), extentOf(samples, job)}};
  if (!job.crs.isEmpty())
    rows.append({QObject::tr("Coordinate reference system"), SpatialReference::describe(job.crs)});
  if (result.estimation)
    addGrid(result, rows);
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
  QString note = QObject::tr(
      "Standard deviations are those of the population (divided by n); the kurtosis of "
      "a Gaussian distribution is 3.");
  if (result.job.variable.transform == Transform::LOG && result.estimation)
    note += ' ' + QObject::tr(
                      "Estimates are of logarithms: the exponential of one is nearer to a "
                      "median of the values than to their mean.");
  return scrolling(table) + paragraph(note, QStringLiteral("lead"));
}

QString variograms(const StudyResult &result)
{
  const Variography &variography = result.variography;
  const int nCurves = variography.sets.first().curves.size();
  QString picture =
      figure(result.variogramPicture,
             result.job.hasModel && variography.isVariogram
                 ? QObject::tr("%1, experimental (points) and of the model (lines without points)")
                       .arg(variography.curveName)
                 : QObject::tr("%1, experimental").arg(variography.curveName),
             QObject::tr("Curves by distance; directions: %1. The table below has their points.")
                 .arg(nCurves));
  if (variography.nVariables > 1)  // a matrix may be as wide as the page
    picture = QStringLiteral("<div>\n") + picture + QStringLiteral("</div>\n");
  return picture + QStringLiteral("<div class=\"maps\">\n") +
         figure(result.variogramMap,
                QObject::tr("Variogram map: the variogram by the vector between two samples"),
                QObject::tr("Cells around the vector 0, in the colours of the variogram")) +
         figure(result.variogramCloud,
                QObject::tr("Variogram cloud: all pairs of samples by distance and half squared "
                            "difference"),
                QObject::tr("Cells in the colours of their numbers of pairs")) +
         QStringLiteral("</div>\n") + rowsTable(variogramParameters(variography, result.job)) +
         headedTable(variogramRows(variography, result.job)) +
         paragraph(QObject::tr("Lags without pairs are left out."), QStringLiteral("lead"));
}

QString leftOut(const Job &job)
{
  const CrossValidationRequest request = job.crossValidation.value_or(CrossValidationRequest());
  if (request.leaveOut == CrossValidationRequest::LINE)
    return QObject::tr("all samples of its line (column \"%1\")").arg(request.line);
  if (request.leaveOut == CrossValidationRequest::BALL)
    return QObject::tr("all samples within %1").arg(lengthText(request.radius, job.lengthUnit));
  return QObject::tr("the sample, and others at its place");
}

QString crossValidation(const StudyResult &result)
{
  const Job &job = result.job;
  const qint64 n = result.crossValidation.getNEstimated();
  Rows rows = {{QObject::tr("Left out around each sample"), leftOut(job)}};
  rows += crossValidationRows(result, job.variable.unit);
  return figure(result.crossValidationPicture,
                QObject::tr("Values against estimates, and standardized errors"),
                QObject::tr("Points of %1 samples around the line of equality, and the histogram "
                            "of their errors; the table below has their means")
                    .arg(groupedText(n))) +
         figure(result.crossValidationMap,
                QObject::tr("Map of the standardized errors; triangles are beyond %1")
                    .arg(QString::number(largestUsualError)),
                QObject::tr("Map of the places of the samples, coloured by their errors")) +
         rowsTable(rows) +
         paragraph(
             QObject::tr(
                 "Each sample is estimated from those that are not left out. Errors are estimates "
                 "less values; standardized ones are divided by "
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

QString structureNames(const Job &job)
{
  QStringList names;
  if (job.fit && job.fit->nugget)
    names << QObject::tr("nugget");
  for (const NgmEVStruct &structure : job.fit ? job.fit->structures : QList<NgmEVStruct>())
    names << structure.getLabel();
  return names.join(QStringLiteral(", "));
}

QString model(const StudyResult &result)
{
  const NgmVModel &model = result.job.model;
  QString origin = QObject::tr("Given by the job.");
  if (result.fit)
    origin = QObject::tr(
                 "Fitted to the experimental variograms by least squares, weighted by pairs "
                 "of samples and nearness; structures to choose from: %1. Misfit %2 (0: "
                 "through every point).")
                 .arg(structureNames(result.job), numberText(result.fit->score));
  else if (!result.job.modelFile.isEmpty())
    origin = QObject::tr("Read from %1.").arg(QFileInfo(result.job.modelFile).fileName());
  return paragraph(origin) + structures(model, result.job) + sills(model, result.job) +
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

/// What the files of a job hold.
QList<QPair<QString, QString>> namedOutputs(const JobOutput &output)
{
  QList<QPair<QString, QString>> files;
  for (const QString &file : output.grids)
    files.append({file, QObject::tr("the estimated grid")});
  files += QList<QPair<QString, QString>>{
      {output.dataMap, QObject::tr("base map of the samples")},
      {output.dataHistogram, QObject::tr("histogram")},
      {output.variogramTable, QObject::tr("experimental variograms")},
      {output.variogramPicture, QObject::tr("picture of the variograms")},
      {output.variogramMap, QObject::tr("variogram map")},
      {output.variogramCloud, QObject::tr("variogram cloud")},
      {output.fittedModel, QObject::tr("the fitted model")},
      {output.crossValidationTable, QObject::tr("cross-validation by sample")},
      {output.crossValidationPicture, QObject::tr("picture of the cross-validation")},
      {output.crossValidationMap, QObject::tr("map of its errors")},
      {output.estimateMap, QObject::tr("picture of the estimate")},
      {output.deviationMap, QObject::tr("picture of its standard deviation")},
      {output.report, QObject::tr("this report")},
      {output.results, QObject::tr("results for other programs")}};
  return files;
}

QString outputs(const StudyResult &result)
{
  NbbHtmlTable table;
  table.setColumnHeader({QObject::tr("File"), QObject::tr("What it holds")});
  table.setAlignHeader(NbbHtmlTable::ALIGN_LEFT);
  const JobOutput &output = result.job.output;
  const QDir folder = QFileInfo(result.job.file).absoluteDir();
  for (const auto &file : namedOutputs(output)) {
    if (!file.first.isEmpty())
      table.addRow({folder.relativeFilePath(file.first), file.second});
  }
  QStringList notes;
  const auto isWritten = [&](const char *ending) {
    return std::any_of(output.grids.begin(), output.grids.end(), [&](const QString &file) {
      return file.endsWith(QLatin1String(ending), Qt::CaseInsensitive);
    });
  };
  if (isWritten(".csv"))
    notes << QObject::tr(
        "In the CSV file the first axis varies fastest, masked nodes are left out "
        "and undefined values are empty fields.");
  if (isWritten(".tif"))
    notes << QObject::tr(
        "The GeoTIFF has a band for each column behind the coordinates: the "
        "estimate, its standard deviation, its variance ...; NaN is no data.");
  return scrolling(table) + paragraph(notes.join(' '), QStringLiteral("lead"));
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

/// A row for each file of a table.
void addTable(const JobTable &input, NbbHtmlTable &table)
{
  QStringList files = {input.file};
  try {
    files = TableReader::listFiles(input.file, input.shown, input.format);
  } catch (const NbeUserError &) {
    // It has gone since it was read.
  }
  const QString folder = input.shown.left(input.shown.lastIndexOf('/') + 1);
  for (const QString &file : files)
    addInput(folder + QFileInfo(file).fileName(), file, table);
}

/// What it takes to repeat the study: the program, the inputs to the byte, and the job.
QString repetition(const StudyResult &result)
{
  const Job &job = result.job;
  NbbHtmlTable inputs;
  inputs.setColumnHeader({QObject::tr("Input"), QObject::tr("Size"), QObject::tr("SHA-256")});
  addTable(job.data, inputs);
  for (const std::optional<JobTable> &table : {job.mask, job.gridValues, job.faults}) {
    if (table)
      addTable(*table, inputs);
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
  QString method = Describe::method(result.job);
  method[0] = method[0].toLower();
  return QObject::tr("%1 by %2: %3 nodes from %4 samples.")
      .arg(result.job.variable.name, method, groupedText(result.estimation->grid.getNEstimated()),
           nSamples);
}

}  // namespace

QByteArray studyReport(const StudyResult &result)
{
  ReportSections report(result.job.title);
  report.add(QStringLiteral("result"), QObject::tr("Result"),
             summary(result) + warnings(result) + maps(result));
  report.add(QStringLiteral("statistics"), QObject::tr("Statistics"), statistics(result));
  report.add(QStringLiteral("data"), QObject::tr("Data"), data(result) + samplePictures(result));
  if (!result.variography.isEmpty())
    report.add(QStringLiteral("variograms"), QObject::tr("Experimental variograms"),
               variograms(result));
  if (result.job.hasModel)
    report.add(QStringLiteral("model"), QObject::tr("Variogram model"), model(result));
  if (!result.crossValidation.isEmpty())
    report.add(QStringLiteral("cross-validation"), QObject::tr("Cross-validation"),
               crossValidation(result));
  if (result.estimation || !result.crossValidation.isEmpty())
    report.add(QStringLiteral("kriging"), QObject::tr("Kriging"),
               rowsTable(Describe::kriging(result.job)));
  if (result.estimation || !result.crossValidation.isEmpty())
    report.add(QStringLiteral("neighborhood"), QObject::tr("Neighborhood"),
               rowsTable(Describe::neighborhood(result.job)));
  if (result.estimation)
    report.add(QStringLiteral("outcome"), QObject::tr("Outcome"), outcome(result));
  report.add(QStringLiteral("files"), QObject::tr("Files"), outputs(result));
  report.add(QStringLiteral("repeat"), QObject::tr("To repeat it"), repetition(result));
  report.add(QStringLiteral("run"), QObject::tr("This run"), run(result));
  return report.toHtml(paragraph(lead(result), QStringLiteral("lead")));
}

}  // namespace orvenal
