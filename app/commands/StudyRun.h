#pragma once

#include "app/io/OutputFiles.h"
#include "app/report/StudyResult.h"
#include "app/study/RunContext.h"

#include <QElapsedTimer>

namespace orvenal {

/// A whole study: reads the data of a job, prints statistics, kriges and writes the files.
class StudyRun
{
public:
  StudyRun(const Job &job, Console &console);

  void run();

private:
  void _abandon();
  void _reserveOutputs();
  void _readData();
  void _krige();
  void _drawMaps();
  void _writeFiles();
  void _writeGrid(const QString &file);
  void _warnOfData();
  void _warnOfOutcome();
  void _endStep(const QString &name);

  Console &_console;
  OutputFiles _files;
  RunContext _context;
  StudyResult _result;
  std::vector<unsigned char> _selected;
  QSharedPointer<NbpMemoryProviderPointsW> _samples;
  QElapsedTimer _timer;
};

}  // namespace orvenal
