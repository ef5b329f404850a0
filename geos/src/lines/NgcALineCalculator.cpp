#include "geos/lines/NgcALineCalculator.h"

#include "basic/data/NbdDataLines.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdDataSetLines.h"

#include <QMutexLocker>
#include <QObject>

NgcALineCalculator::NgcALineCalculator() = default;

NgcALineCalculator::~NgcALineCalculator()
{
  _finish();
}

void NgcALineCalculator::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

NbdDataLines *NgcALineCalculator::getNextInputLines()
{
  QMutexLocker lock(&_getMutex());
  if (_progressMode == PROGRESS_UNSET)
    _progressMode = PROGRESS_ON_INPUT;
  int nSkipped = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped);
  // Buffers without a selected sample give no output either.
  _incrementCounter(nSkipped + (buffer && _progressMode == PROGRESS_ON_INPUT ? 1 : 0));
  return static_cast<NbdDataLines *>(buffer);
}

void NgcALineCalculator::saveInputLines(const NbdDataLines &lines)
{
  QMutexLocker lock(&_getMutex());
  _checkForProgressStop();
  _getInputLines()->saveFromBuffer(lines);
}

void NgcALineCalculator::_checkDatasets()
{
  const NgdDataSetLines *input = _getInputLines();
  if (!input)
    throw NbeProgrammingError(QStringLiteral("NgcALineCalculator: No input dataset defined."));
  if (input->getNLines() == 0)
    throw NbeUserError(
        QObject::tr("WARNING: nothing to do, there is no line in the input line dataset."));
}

void NgcALineCalculator::_initBufferManager()
{
  _getBufferManager()->tuneBufferSize(getAvailableMemBytes(), getNThread(), 100);
}

const NgdADataSet *NgcALineCalculator::_bufferDataset() const
{
  return _getInputLines();
}

const NgdDataSetLines *NgcALineCalculator::_getInputLines() const
{
  return dynamic_cast<const NgdDataSetLines *>(_getDataset(Nbd::Dataset::INPUT));
}
