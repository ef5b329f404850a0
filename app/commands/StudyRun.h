#pragma once

#include "app/io/OutputFiles.h"
#include "app/plot/Picture.h"
#include "app/report/StudyResult.h"
#include "app/study/RunContext.h"

#include <QElapsedTimer>

namespace orvenal {

struct VariogramStyle;

/// A study, or some steps of it: reads the data of a job, prints statistics, computes what the
/// steps say and writes their files.
class StudyRun
{
public:
  StudyRun(const Job &job, const Steps &steps, Console &console);

  void run();

  /// What it found, after the run.
  const StudyResult &getResult() const { return _result; }

private:
  void _reserveOutputs();
  void _readData();
  void _computeStatistics();
  void _drawSamples();
  void _computeVariograms();
  void _drawVariograms();
  void _drawVariogramMap(const VariogramStyle &style);
  void _fitModel();
  void _crossValidate();
  void _drawCrossValidation();
  void _krige();
  void _drawMaps();
  bool _isToDo(Step step) const { return _steps.count(step) > 0; }
  void _writeFiles();
  QByteArray _savePicture(const QString &file, const Picture &picture);
  void _warnOfData();
  void _checkDuplicates();
  void _warnOfOutcome();
  void _endStep(const QString &name);

  Steps _steps;
  Console &_console;
  OutputFiles _files;
  RunContext _context;
  StudyResult _result;
  GridInput _gridInput;
  QSharedPointer<NbpMemoryProviderPointsW> _samples;
  QElapsedTimer _timer;
};

}  // namespace orvenal
