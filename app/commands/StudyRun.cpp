#include "app/commands/StudyRun.h"

#include "app/base/NumberText.h"
#include "app/base/PathText.h"
#include "app/console/Console.h"
#include "app/console/Interruption.h"
#include "app/io/GridWriter.h"
#include "app/job/ModelFile.h"
#include "app/plot/CrossValidationPicture.h"
#include "app/plot/HistogramPicture.h"
#include "app/plot/MapPicture.h"
#include "app/plot/SampleMapPicture.h"
#include "app/plot/SectionsPicture.h"
#include "app/plot/VariogramMapPicture.h"
#include "app/plot/VariogramPicture.h"
#include "app/report/CrossValidationTable.h"
#include "app/report/Describe.h"
#include "app/report/ResultJson.h"
#include "app/report/ResultTable.h"
#include "app/report/StudyReport.h"
#include "app/report/VariogramCsvWriter.h"
#include "app/study/DataChecks.h"
#include "app/study/FitWarnings.h"
#include "app/study/References.h"
#include "app/study/Statistics.h"
#include "app/study/VariogramMap.h"
#include "basic/error/NbeUserError.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"

#include <QJsonDocument>
#include <QObject>

namespace orvenal {

namespace {

SampleMapStyle sampleMapStyle(const Job &job, const QString &valueLabel)
{
  SampleMapStyle style;
  style.title = job.title;
  style.valueLabel = valueLabel;
  style.lengthUnit = job.lengthUnit;
  style.grid = job.hasGrid ? &job.grid : nullptr;
  return style;
}

Picture drawResult(const GridResult &grid, const std::vector<double> &values,
                   const StudyResult &result, const MapStyle &style)
{
  if (grid.geometry.is2D())
    return drawMap(grid.geometry, values, result.samples, style);
  return drawSections(grid.geometry, values,
                      chooseSections(grid.geometry, result.job.output.sections), result.samples,
                      style);
}

}  // namespace

StudyRun::StudyRun(const Job &job, const Steps &steps, Console &console)
    : _steps(steps),
      _console(console),
      _files(job.output.overwrite ? OutputFiles::REPLACE : OutputFiles::REFUSE),
      _context{console, job.threads, job.memory}
{
  _result.job = job;
  _result.job.keepOutputsOf(steps);
}

void StudyRun::run()
{
  _timer.start();
  _reserveOutputs();
  _console.print(_result.job.title);
  _readData();
  _computeStatistics();
  if (_isToDo(Step::VARIOGRAM))
    _computeVariograms();
  if (_isToDo(Step::FIT))
    _fitModel();
  _checkDuplicates();
  if (_isToDo(Step::CROSS_VALIDATION))
    _crossValidate();
  if (_isToDo(Step::KRIGING))
    _krige();
  _console.print('\n' + textStatistics(_result) + '\n');
  if (_result.job.hasModel && _result.job.getNVariables() > 1)
    _console.print(textSills(_result.job) + '\n');
  if (_isToDo(Step::VARIOGRAM))
    _console.print(textVariograms(_result.variography, _result.job) + '\n');
  if (_isToDo(Step::CROSS_VALIDATION))
    _console.print(textCrossValidation(_result) + '\n');
  _drawSamples();
  _drawVariograms();
  _drawCrossValidation();
  _drawMaps();
  _writeFiles();
}

void StudyRun::_reserveOutputs()
{
  _files.reserve(_result.job.output.getFiles());
}

void StudyRun::_readData()
{
  const Job &job = _result.job;
  for (const QString &warning : adoptReferences(_result.job, _isToDo(Step::KRIGING)))
    _console.warn(warning);
  _result.samples = readSamples(job);
  _samples = makeProvider(_result.samples);
  _console.print(
      QObject::tr("  samples  %1 of %2 in %3")
          .arg(groupedText(_result.samples.getCount()), job.variable.name, job.data.shown));
  if (_result.samples.nMerged > 0)
    _console.print(QObject::tr("  merged   %1").arg(describeDuplicates(job, _result.samples)));
  if (_isToDo(Step::KRIGING)) {
    _gridInput.selected = readMask(job, _result.nMaskOutside);
    _gridInput.values = readGridValues(job);
    _console.print(QObject::tr("  grid     %1").arg(Describe::grid(job)));
  }
  if (job.hasModel)
    _console.print(QObject::tr("  model    %1").arg(Describe::model(job)));
  _warnOfData();
  _endStep(QObject::tr("Reading"));
}

void StudyRun::_computeStatistics()
{
  _result.variableStatistics =
      computeMultivariateStatistics(makeVariableDataSet(_result.job, _samples), _context);
  _result.sampleStatistics = _result.variableStatistics.getConstUnivariateStats(0);
  _endStep(QObject::tr("Statistics of the samples"));
}

void StudyRun::_drawSamples()
{
  const Job &job = _result.job;
  const JobOutput &output = job.output;
  if (output.dataMap.isEmpty() && output.dataHistogram.isEmpty() && output.report.isEmpty())
    return;
  const Picture map = drawSampleMap(_result.samples, sampleMapStyle(job, job.variable.getLabel()));
  _result.dataMap = _savePicture(output.dataMap, map);
  Interruption::check();
  const Picture histogram = drawHistogram(_result.samples.value, _result.sampleStatistics,
                                          job.title, job.variable.getLabel());
  _result.dataHistogram = _savePicture(output.dataHistogram, histogram);
  _endStep(QObject::tr("Pictures of the samples"));
}

void StudyRun::_computeVariograms()
{
  _result.variography = computeVariograms(_result.job, _result.samples, _samples,
                                          _result.variableStatistics, _context);
  _endStep(QObject::tr("Variograms"));
}

void StudyRun::_fitModel()
{
  Job &job = _result.job;
  _result.fit = fitModel(job, _result.variography, _result.variableStatistics, _context);
  _result.fit->model = modelAsWritten(_result.fit->model, job.getNDimensions());
  job.model = _result.fit->model;
  job.hasModel = true;
  _console.print(QObject::tr("  fitted   %1").arg(Describe::model(job)));
  for (const QString &warning : fitWarnings(job, _result.variography, *_result.fit))
    _console.warn(warning);
  _endStep(QObject::tr("Fit of the model"));
}

/// Map and cloud, where they are wanted.
void StudyRun::_drawVariogramMap(const VariogramStyle &style)
{
  const Job &job = _result.job;
  if (!job.output.variogramMap.isEmpty()) {
    const Picture picture =
        drawVariogramMap(computeVariogramMap(job, _result.samples, _samples, _context), style);
    _result.variogramMap = _savePicture(job.output.variogramMap, picture);
  }
  if (!job.output.variogramCloud.isEmpty()) {
    const Picture picture = drawVariogramCloud(
        computeVariogramCloud(job, _result.samples, _samples, _result.variableStatistics, _context),
        style);
    _result.variogramCloud = _savePicture(job.output.variogramCloud, picture);
  }
}

void StudyRun::_crossValidate()
{
  _result.crossValidation = crossValidate(_result.job, _result.samples, _context);
  if (_result.crossValidation.nFailures > 0)
    _console.warn(
        QObject::tr("%1 samples failed in the cross-validation. %2")
            .arg(groupedText(_result.crossValidation.nFailures), _result.crossValidation.failures));
  _endStep(QObject::tr("Cross-validation"));
}

void StudyRun::_drawCrossValidation()
{
  const Job &job = _result.job;
  if (!_isToDo(Step::CROSS_VALIDATION) ||
      (job.output.crossValidationPicture.isEmpty() && job.output.crossValidationMap.isEmpty() &&
       job.output.report.isEmpty()))
    return;
  const Picture picture = drawCrossValidation(_result.crossValidation, _result.samples.value,
                                              job.title, job.variable.getLabel());
  _result.crossValidationPicture = _savePicture(job.output.crossValidationPicture, picture);
  const Picture map = drawErrorMap(
      _result.samples, _result.crossValidation.standardizedError,
      sampleMapStyle(job, QObject::tr("Standardized error of %1").arg(job.variable.name)));
  _result.crossValidationMap = _savePicture(job.output.crossValidationMap, map);
  _endStep(QObject::tr("Pictures of the cross-validation"));
}

void StudyRun::_krige()
{
  _result.estimation = krige(_result.job, _samples, std::move(_gridInput), _context);
  _warnOfOutcome();
  _endStep(QObject::tr("Kriging"));
}

void StudyRun::_drawVariograms()
{
  const Job &job = _result.job;
  if (!_isToDo(Step::VARIOGRAM))
    return;
  VariogramStyle style;
  style.title = job.title;
  for (int i = 0; i < job.getNVariables(); ++i)
    style.variables << job.getVariable(i);
  style.lengthUnit = job.lengthUnit;
  style.nDimensions = job.getNDimensions();
  style.model = job.hasModel && _result.variography.isVariogram ? &job.model : nullptr;
  if (!job.output.variogramPicture.isEmpty() || !job.output.report.isEmpty()) {
    const Picture picture = drawVariograms(_result.variography, style);
    _result.variogramPicture = _savePicture(job.output.variogramPicture, picture);
  }
  _drawVariogramMap(style);
  _endStep(job.output.variogramMap.isEmpty() && job.output.variogramCloud.isEmpty()
               ? QObject::tr("Picture of the variograms")
               : QObject::tr("Variogram map and cloud, pictures"));
}

void StudyRun::_drawMaps()
{
  const Job &job = _result.job;
  const bool wanted = !job.output.report.isEmpty() || !job.output.estimateMap.isEmpty() ||
                      !job.output.deviationMap.isEmpty();
  if (!wanted || !_result.estimation)
    return;
  const GridResult &grid = _result.estimation->grid;
  MapStyle style;
  style.title = job.title;
  style.lengthUnit = job.lengthUnit;
  style.subtitle = Describe::method(job);
  style.valueLabel = Describe::estimateLabel(job);
  style.coloredSamples = true;
  const Picture estimate = drawResult(grid, grid.estimate, _result, style);
  _result.estimateMap = _savePicture(job.output.estimateMap, estimate);
  Interruption::check();
  style.valueLabel = Describe::deviationLabel(job);
  style.isDeviation = true;
  style.coloredSamples = false;
  const Picture deviation = drawResult(grid, grid.deviation, _result, style);
  _result.deviationMap = _savePicture(job.output.deviationMap, deviation);
  _endStep(QObject::tr("Maps"));
}

/// Writes a picture where it is wanted. Encoding it takes longer than all else: it is done once for
/// file and report.
QByteArray StudyRun::_savePicture(const QString &file, const Picture &picture)
{
  const bool isSvg = file.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive);
  const bool needsPng = !_result.job.output.report.isEmpty() || (!file.isEmpty() && !isSvg);
  const QByteArray png = needsPng ? picture.toPng() : QByteArray();
  if (!file.isEmpty())
    _files.write(file, isSvg ? picture.toSvg() : png);
  return png;
}

void StudyRun::_writeFiles()
{
  const JobOutput &output = _result.job.output;
  for (const QString &file : output.grids)
    writeGrid(_files.getTemporaryPath(file), shownPath(file),
              gridTableOf(_result.job, _result.estimation->grid));
  if (!output.variogramTable.isEmpty())
    _files.write(output.variogramTable, variogramCsv(_result.variography, _result.job));
  if (!output.fittedModel.isEmpty())
    _files.write(output.fittedModel,
                 modelToBytes(output.fittedModel, _result.job.model, _result.job.getNDimensions()));
  if (!output.crossValidationTable.isEmpty())
    writeCrossValidation(_files.getTemporaryPath(output.crossValidationTable),
                         shownPath(output.crossValidationTable), _result.crossValidation,
                         _result.samples, _result.job);
  _endStep(QObject::tr("Writing"));
  _result.warnings = _console.getWarnings();
  if (!output.report.isEmpty())
    _files.write(output.report, studyReport(_result));
  if (!output.results.isEmpty())
    _files.write(output.results, QJsonDocument(resultToJson(_result)).toJson());
  Interruption::check();
  _files.commit();
  for (const QString &file : output.getFiles())
    _console.print(QObject::tr("written: %1").arg(shownPath(file)));
}

void StudyRun::_warnOfData()
{
  const Job &job = _result.job;
  const Samples &samples = _result.samples;
  if (samples.nUndefined > 0)
    _console.report(
        QObject::tr("  %1 of the samples have no value").arg(groupedText(samples.nUndefined)));
  if (const QString degrees = DataChecks::seemsToBeDegrees(job, samples); !degrees.isEmpty())
    _console.warn(degrees);
  if (_isToDo(Step::KRIGING)) {
    if (const QString miss = DataChecks::gridMissesSamples(job, samples); !miss.isEmpty())
      _console.warn(miss);
  }
  if (_result.nMaskOutside > 0)
    _console.warn(QObject::tr("%1 points of %2 are outside the grid")
                      .arg(groupedText(_result.nMaskOutside), job.mask->shown));
}

/// Samples at one place have equal rows in the systems of kriging, unless something tells them
/// apart.
void StudyRun::_checkDuplicates()
{
  const Job &job = _result.job;
  const Samples &samples = _result.samples;
  if (samples.nDuplicates == 0 || samples.nMerged > 0)
    return;
  const QString found = textDuplicates(samples);
  const bool isKriged = _isToDo(Step::KRIGING) || _isToDo(Step::CROSS_VALIDATION);
  if (!isKriged) {
    _console.warn(found);
  } else if (areDuplicatesDistinct(job, samples)) {
    _console.warn(QObject::tr("%1; all are used, as the nugget effect or measurement errors tell "
                              "them apart")
                      .arg(found));
  } else if (!job.neighborhood && _isToDo(Step::KRIGING)) {
    throw NbeUserError(QObject::tr("%1, which no system of a unique neighborhood can have without "
                                   "a nugget effect; choose \"first\" or \"average\" for "
                                   "data.duplicates, or give a nugget")
                           .arg(found));
  } else {
    _console.warn(QObject::tr("%1; without a nugget effect no system with two of a place can be "
                              "solved, and what it is for stays undefined (see data.duplicates)")
                      .arg(found));
  }
}

void StudyRun::_warnOfOutcome()
{
  const Estimation &estimation = *_result.estimation;
  const qint64 nMissing = estimation.grid.getNSelected() - estimation.grid.getNEstimated();
  if (estimation.nFailures > 0)
    _console.warn(QObject::tr("%1 nodes failed. %2")
                      .arg(groupedText(estimation.nFailures), estimation.failures));
  if (nMissing > estimation.nFailures)
    _console.warn(QObject::tr("%1 nodes are left undefined: %2")
                      .arg(groupedText(nMissing - estimation.nFailures),
                           Describe::reasonOfGaps(_result.job).toLower()));
}

void StudyRun::_endStep(const QString &name)
{
  _result.seconds.append({name, double(_timer.restart()) / 1000.});
}

}  // namespace orvenal
