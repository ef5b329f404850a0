#include "geos/base/NgcACalculatorBuffer.h"

#include "base/private/NgcCalculatorHelper.h"
#include "basic/data/NbdAData.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "geos/base/NgwAThread.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdIBufferIterator.h"

#include <QMutexLocker>
#include <QObject>

#include <vector>

NgcACalculatorBuffer::NgcACalculatorBuffer() = default;

NgcACalculatorBuffer::~NgcACalculatorBuffer()
{
  _finish();
}

void NgcACalculatorBuffer::_cleanup()
{
  _pool.waitForDone(-1);
  NgcACalculatorSimple::_cleanup();
}

void NgcACalculatorBuffer::_doRun()
{
  _resetRun();
  _doFinalChecks();
  _preProcessing();
  _createBufferManager();
  _initBufferManager();
  _initCalculatorCounter();
  _createBufferIterator();
  _prepareStatistics();
  _runWorkers();
  _postProcessing();
  _finalizeStatistics();
  _incrementCounter(1);
}

const NgdADataSet *NgcACalculatorBuffer::_statisticsDataset() const
{
  return _bufferDataset();
}

void NgcACalculatorBuffer::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Pre Processing..."));
}

void NgcACalculatorBuffer::_initCalculatorCounter()
{
  const int nBuffers = _bufferManager->getNBuffers();
  if (nBuffers <= 0)
    throw NbeUserError(
        QObject::tr("WARNING: nothing to do, there is no selected data in the dataset."));
  _initCounter(qint64(nBuffers) + 1);
}

void NgcACalculatorBuffer::_createBufferIterator()
{
  _setBufferIterator(_bufferManager->createBufferIterator());
}

void NgcACalculatorBuffer::_postProcessing()
{
  _setProgressMessageDetail(QObject::tr("Post Processing..."));
}

void NgcACalculatorBuffer::_createBufferManager()
{
  const NgdADataSet *dataSet = _bufferDataset();
  if (!dataSet)
    NBE_FAIL(QStringLiteral("No dataset provided for buffers creation."));
  _setBufferManager(NgcCalculatorHelper::createManager(*dataSet, _getRules(), _needCoordinates,
                                                       _needSampleNumber));
}

void NgcACalculatorBuffer::_runWorkers()
{
  const int nThreads = getNThread();
  _pool.setMaxThreadCount(nThreads);
  // None starts when one of them cannot be made.
  std::vector<std::unique_ptr<NgwAThread>> workers;
  for (int thread = 0; thread < nThreads; ++thread)
    workers.emplace_back(_createComputingThread(&_pool));
  for (std::unique_ptr<NgwAThread> &worker : workers)
    _pool.start(worker.release());
  _pool.waitForDone(-1);

  // Workers may leave their loop on a stop request without telling.
  if (_mustStop())
    _pool.reportFailure(QString());
  if (!_pool.isOk())
    throw NbeUserError(_pool.getMessage());
}

void NgcACalculatorBuffer::_resetRun()
{
  _pool.reset();
  QMutexLocker lock(&_ranksMutex);
  _rankOfThread.clear();
  _nBuffersTaken = 0;
}

NbdAData *NgcACalculatorBuffer::_takeNextBuffer(int &nSkipped)
{
  qint64 nSkippedSamples = 0;
  return _takeNextBuffer(nSkipped, nSkippedSamples);
}

NbdAData *NgcACalculatorBuffer::_takeNextBuffer(int &nSkipped, qint64 &nSkippedSamples)
{
  nSkipped = 0;
  nSkippedSamples = 0;
  _checkForProgressStop();
  while (_pool.isOk() && _bufferIterator->hasNext()) {
    std::unique_ptr<NbdAData> buffer(_bufferIterator->next());
    if (NgcCalculatorHelper::hasSelectedSamples(*buffer)) {
      QMutexLocker lock(&_ranksMutex);
      _rankOfThread.insert(QThread::currentThreadId(), _nBuffersTaken++);
      return buffer.release();
    }
    ++nSkipped;
    nSkippedSamples += buffer->getNSamples();
  }
  return nullptr;
}

qint64 NgcACalculatorBuffer::_getCurrentBufferRank() const
{
  QMutexLocker lock(&_ranksMutex);
  return _rankOfThread.value(QThread::currentThreadId(), -1);
}

void NgcACalculatorBuffer::_performStatistics(const NbdAData &buffer)
{
  NgcACalculatorSimple::_performStatistics(buffer, _getCurrentBufferRank());
}

void NgcACalculatorBuffer::_setBufferManager(NgdABufferManager *manager)
{
  // The iterator belongs to the manager that made it.
  _bufferIterator.reset();
  _bufferManager.reset(manager);
}

void NgcACalculatorBuffer::_setBufferIterator(NgdIBufferIterator *iterator)
{
  _bufferIterator.reset(iterator);
}
