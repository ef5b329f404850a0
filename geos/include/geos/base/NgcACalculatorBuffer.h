#pragma once

#include "geos/base/NgcACalculatorSimple.h"
#include "geos/base/NgwThreadPool.h"

#include <QHash>
#include <QMutex>

#include <memory>

class NgdABufferManager;
class NgdIBufferIterator;
class NgwAThread;

/// A calculator whose workers share the buffers of one data set.
///
/// The run prepares, cuts the data set into buffers, and starts getNThread() workers. Each takes
/// the next buffer under the calculator's mutex, computes, gives the results back under the same
/// mutex and advances the progress by one. Then the run post-processes.
class NgcACalculatorBuffer : public NgcACalculatorSimple
{
public:
  ~NgcACalculatorBuffer() override;

protected:
  NgcACalculatorBuffer();

  /// Waits for the workers before anything is closed.
  void _cleanup() override;
  void _doRun() override;

  /// The buffer data set.
  const NgdADataSet *_statisticsDataset() const override;

  virtual void _preProcessing();

  /// Sizes the buffers.
  virtual void _initBufferManager() = 0;

  /// The number of buffers + 1, as the maximum of the progress counter; a user error when there is
  /// nothing to do.
  virtual void _initCalculatorCounter();

  virtual void _createBufferIterator();

  /// The data set on which buffers are built.
  virtual const NgdADataSet *_bufferDataset() const = 0;

  /// A new worker; the pool deletes it.
  virtual NgwAThread *_createComputingThread(NgwThreadPool *pool) = 0;

  virtual void _postProcessing();

  /// Makes the manager of the buffer data set, with this calculator's flags and loop.
  void _createBufferManager();

  /// Starts getNThread() workers, waits for them, and throws the text of the first failure. A run
  /// that was asked to stop ends with the pool's text for it.
  void _runWorkers();

  /// Clears what a previous run left in the pool and the order of buffers. Part of _doRun().
  void _resetRun();

  /// Takes the next buffer with samples and, if it has a selection, with a selected sample; null at
  /// the end. `nSkipped` is how many were left out on the way, `nSkippedSamples` the samples that
  /// they hold. The caller holds the calculator's mutex and owns the buffer.
  NbdAData *_takeNextBuffer(int &nSkipped, qint64 &nSkippedSamples);
  NbdAData *_takeNextBuffer(int &nSkipped);

  /// Rank, in the order of hand-out of this run, of the buffer that the calling thread took last;
  /// -1 when it took none.
  qint64 _getCurrentBufferRank() const;

  using NgcACalculatorSimple::_performStatistics;

  /// Gathers the statistics of the buffer that the calling thread took last; merged in the order in
  /// which buffers were taken. Not to be called under the calculator's mutex.
  void _performStatistics(const NbdAData &buffer);

  NgdABufferManager *_getBufferManager() const { return _bufferManager.get(); }
  void _setBufferManager(NgdABufferManager *manager);
  NgdIBufferIterator *_getBufferIterator() const { return _bufferIterator.get(); }
  void _setBufferIterator(NgdIBufferIterator *iterator);
  NgwThreadPool &_getPool() { return _pool; }

  /// Serialises the hand-out and the write-back of buffers.
  QMutex &_getMutex() const { return _mutex; }

  /// Whether buffers carry coordinates and sample numbers; neither by default.
  void _setNeedCoordinates(bool need) { _needCoordinates = need; }
  bool _getNeedCoordinates() const { return _needCoordinates; }
  void _setNeedSampleNumber(bool need) { _needSampleNumber = need; }
  bool _getNeedSampleNumber() const { return _needSampleNumber; }

private:
  std::unique_ptr<NgdABufferManager> _bufferManager;
  std::unique_ptr<NgdIBufferIterator> _bufferIterator;
  NgwThreadPool _pool;
  mutable QMutex _mutex;
  bool _needCoordinates = false;
  bool _needSampleNumber = false;

  mutable QMutex _ranksMutex;  // guards _rankOfThread
  QHash<Qt::HANDLE, qint64> _rankOfThread;
  qint64 _nBuffersTaken = 0;
};
