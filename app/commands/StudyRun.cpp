#include "app/commands/StudyRun.h"

#include "app/console/Console.h"
#include "app/console/Interruption.h"
#include "app/console/Progress.h"
#include "app/io/GeoTiffWriter.h"
#include "app/io/GridCsvWriter.h"
#include "app/io/SpatialReference.h"
#include "app/plot/MapPicture.h"
#include "app/report/Describe.h"
#include "app/report/StudyReport.h"
#include "app/study/Statistics.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"

#include <QDir>
#include <QObject>

namespace orvenal {

StudyRun::StudyRun(const Job &job, Console &console)
    : _console(console), _context{console, job.threads, job.memory, [this] { _abandon(); }}
{
  _result.job = job;
}

void StudyRun::run()
{
  _timer.start();
  _reserveOutputs();
  _console.print(_result.job.title);
  _readData();
  _krige();
  _console.print('\n' + textStatistics(_result) + '\n');
  _drawMaps();
  _writeFiles();
}

void StudyRun::_abandon()
{
  _files.discard();
  _console.error(QObject::tr("interrupted; nothing was written"));
}

void StudyRun::_reserveOutputs()
{
  for (const QString &file : _result.job.output.getFiles())
    _files.reserve(file);
}

void StudyRun::_readData()
{
  const Job &job = _result.job;
  _result.samples = readSamples(job);
  _selected = readMask(job, _result.nMaskOutside);
  _samples = makeProvider(_result.samples);
  _console.print(
      QObject::tr("  samples  %1 of %2 in %3")
          .arg(Progress::grouped(_result.samples.getCount()), job.variable.name, job.data.shown));
  _console.print(QObject::tr("  grid     %1").arg(Describe::grid(job)));
  _console.print(QObject::tr("  model    %1").arg(Describe::model(job)));
  _warnOfData();
  _endStep(QObject::tr("Reading"));
}

void StudyRun::_krige()
{
  NgdDataSetPoints data;
  data.setDataProvider(_samples);
  data.assignVariable(Nbd::Role::V, _samples->getIdFromName(sampleValueName()));
  _result.sampleStatistics = computeStatistics(data, _context).first();
  _endStep(QObject::tr("Statistics of the samples"));
  _result.estimation = krige(_result.job, _samples, _selected, _context);
  _warnOfOutcome();
  _endStep(QObject::tr("Kriging"));
}

void StudyRun::_drawMaps()
{
  const Job &job = _result.job;
  const GridResult &grid = _result.estimation.grid;
  const bool wanted = !job.output.report.isEmpty() || !job.output.estimateMap.isEmpty() ||
                      !job.output.deviationMap.isEmpty();
  if (!wanted || !grid.geometry.is2D())
    return;
  MapStyle style;
  style.title = job.title;
  style.lengthUnit = job.lengthUnit;
  style.subtitle = Describe::method(job);
  style.valueLabel = Describe::estimateLabel(job);
  style.coloredSamples = true;
  _result.estimateMap = toPng(drawMap(grid.geometry, grid.estimate, _result.samples, style));
  Interruption::check();
  style.valueLabel = Describe::deviationLabel(job);
  style.colors = ColorScale::CIVIDIS;
  style.coloredSamples = false;
  _result.deviationMap = toPng(drawMap(grid.geometry, grid.deviation, _result.samples, style));
  _endStep(QObject::tr("Maps"));
}

void StudyRun::_writeFiles()
{
  const JobOutput &output = _result.job.output;
  for (const QString &file : output.grids)
    _writeGrid(file);
  if (!output.estimateMap.isEmpty())
    _files.write(output.estimateMap, _result.estimateMap);
  if (!output.deviationMap.isEmpty())
    _files.write(output.deviationMap, _result.deviationMap);
  _endStep(QObject::tr("Writing"));
  _result.warnings = _console.getWarnings();
  if (!output.report.isEmpty())
    _files.write(output.report, studyReport(_result));
  Interruption::check();
  _files.commit();
  for (const QString &file : output.getFiles())
    _console.print(QObject::tr("written: %1").arg(QDir::current().relativeFilePath(file)));
}

void StudyRun::_writeGrid(const QString &file)
{
  const Job &job = _result.job;
  const QString temporary = _files.getTemporaryPath(file);
  if (file.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive))
    writeGridCsv(temporary, file, _result.estimation.grid);
  else
    writeGeoTiff(temporary, file, _result.estimation.grid, job.crs, Describe::estimateLabel(job),
                 Describe::deviationLabel(job));
}

void StudyRun::_warnOfData()
{
  const Job &job = _result.job;
  const Samples &samples = _result.samples;
  if (samples.nUndefined > 0)
    _console.report(QObject::tr("  %1 of the samples have no value")
                        .arg(Progress::grouped(samples.nUndefined)));
  if (samples.nDuplicates > 0)
    _console.warn(QObject::tr("%1 samples lie at the place of another one; without a nugget their "
                              "systems cannot be solved")
                      .arg(Progress::grouped(samples.nDuplicates)));
  if (_result.nMaskOutside > 0)
    _console.warn(QObject::tr("%1 points of %2 are outside the grid")
                      .arg(Progress::grouped(_result.nMaskOutside), job.mask->shown));
  QString reason;
  if (!job.crs.isEmpty() && SpatialReference::parse(job.crs, reason).isGeographic())
    _console.warn(
        QObject::tr("the coordinates are degrees: a degree of longitude is shorter than "
                    "one of latitude, and distances are measured as if they were equal"));
}

void StudyRun::_warnOfOutcome()
{
  const Estimation &estimation = _result.estimation;
  const qint64 nMissing = estimation.grid.getNSelected() - estimation.grid.getNEstimated();
  if (estimation.nFailures > 0)
    _console.warn(QObject::tr("%1 nodes failed. %2")
                      .arg(Progress::grouped(estimation.nFailures), estimation.failures));
  if (nMissing > estimation.nFailures)
    _console.warn(QObject::tr("%1 nodes have too few samples around them and are left undefined")
                      .arg(Progress::grouped(nMissing - estimation.nFailures)));
}

void StudyRun::_endStep(const QString &name)
{
  _result.seconds.append({name, double(_timer.restart()) / 1000.});
}

}  // namespace orvenal
