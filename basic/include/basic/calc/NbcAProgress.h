#pragma once

#include "basic/error/NbeError.h"

#include <QMutex>
#include <QString>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

/// A computation on a thread of its own that can be followed and stopped: base of the calculators.
///
/// A run is started by start() (on the thread) or by execute() (on the calling thread). It resets
/// counter, detail and error, calls _doRun() behind the standard exception translation, keeps the
/// error if there is one, calls _cleanup() in all cases, clears the stop and failure flags and sets
/// the state last. An object may be run again.
///
/// Counter, messages, flags and thread count may be read and written from any thread. Signals are
/// emitted by the thread that makes the change, on change only.
///
/// A most derived class calls _finish() in its destructor: the run that it stops and waits for may
/// still call the virtual operations of the object.
class NbcAProgress : public QThread
{
  Q_OBJECT

public:
  enum State {
    IDLE,        ///< never run
    RUNNING,     ///< from the call of start() or execute() until the end of the run
    COMPLETED,   ///< the last run came to its end; the only state in which results may be read
    FAILED,      ///< the last run ended with an error, see getErrorMessage()
    INTERRUPTED  ///< the last run was asked to stop
  };

  explicit NbcAProgress(QObject *parent = nullptr);
  ~NbcAProgress() override;

  /// Starts a run on the object's own thread and returns at once; wait() joins. Does nothing while
  /// a run is under way.
  void start(Priority priority = InheritPriority);

  /// Runs on the calling thread; returns the state at the end. Starting twice at a time is an
  /// NbeProgrammingError.
  State execute();

  /// Asks the run under way to stop, and returns at once. Without effect when nothing runs.
  void stop();

  State getState() const { return _state.load(); }
  bool isCompleted() const { return getState() == COMPLETED; }

  bool isRunning() const { return getState() == RUNNING; }

  /// Text of the error that ended the last run; empty when there was none or it was interrupted.
  QString getErrorMessage() const;

  /// Type of that error; NO_ERROR_TYPE when there was none, INTERRUPTION when the run was stopped.
  NbeError::ErrorType getErrorType() const;

  qint64 getCounter() const;
  qint64 getCounterMax() const { return _counterMax.load(std::memory_order_relaxed); }

  /// Counter in percent of its maximum, 0 to 100; 0 while the maximum is not positive.
  int getPercent() const;

  /// What the object does, for users. Kept from run to run.
  void setProgressMessage(const QString &message);
  QString getProgressMessage() const;

  /// The step under way. Emptied when a run starts.
  QString getProgressMessageDetail() const;

  /// Number of workers of a parallel run, at least 1; by default NbbSysInfo::idealThreadCount().
  void setNThread(int count);
  int getNThread() const { return _nThread.load(); }

  /// Memory budget of the run's buffers; by default NbbSysInfo::idealMaximumMemory().
  void setAvailableMemBytes(qint64 bytes);
  qint64 getAvailableMemBytes() const { return _availableMemBytes.load(); }

  // For the run and for the workers and engines that it drives, from any thread.

  /// Sets the maximum and puts the counter at 0.
  void _initCounter(qint64 maximum) const;
  void _incrementCounter(qint64 increment) const;
  void _setCounter(qint64 value) const;
  void _setProgressMessageDetail(const QString &detail) const;

  /// Makes the stop checks of all workers throw, and the run end as failed.
  void _setFailed();

  bool _isStopRequested() const { return _stopRequested.load(std::memory_order_relaxed); }
  bool _hasFailed() const { return _failed.load(std::memory_order_relaxed); }

  /// A stop was requested or the run has failed: workers leave their loop.
  bool _mustStop() const { return _isStopRequested() || _hasFailed(); }

  /// Throws NbeException when the run must stop.
  void _checkForProgressStop() const;

Q_SIGNALS:
  void progressChanged(int percent) const;
  void messageChanged(const QString &message) const;
  void detailChanged(const QString &detail) const;

protected:
  /// Entry of the thread.
  void run() override;

  /// Called at the end of every run, whatever its outcome. An error in it is kept only when there
  /// was none before.
  virtual void _cleanup();

  /// Called with the error that ends the run (not for an interruption), before _cleanup().
  virtual void _errorOccurred(const NbeError &error);

  /// The checks that _doRun() makes first.
  virtual void _doFinalChecks();

  /// The computation.
  virtual void _doRun() = 0;

  /// Brings the detail up to date before it is read, from any thread.
  virtual void _updateProgressMessageDetail() const;

  /// Brings the counter up to date before it is read, from any thread.
  virtual void _updateCounter() const;

  /// Waits for `sub`, which runs on its thread: maps its counter on `share` units of this counter,
  /// forwards stop requests and, unless `ignoreFailure`, rethrows its error with its type.
  virtual void _waitSubProgress(NbcAProgress &sub, bool ignoreFailure, qint64 share);

  /// Runs `sub` on its own thread with the thread count and memory budget of this object, and
  /// waits for it as _waitSubProgress() says. Throws NbeException when this run must stop.
  void _runSubProgress(NbcAProgress &sub, bool ignoreFailure, qint64 share);

  /// Asks the run under way to stop and waits for its end.
  void _finish();

private:
  State _runGuarded();
  void _resetForRun();
  bool _attempt(const std::function<void()> &step, bool report);
  void _keepError(const NbeError &error);
  State _endRun(bool completed);
  void _rethrowError() const;
  void _publishPercent(bool mayDecrease) const;

  std::atomic<State> _state{IDLE};
  std::atomic<bool> _stopRequested{false};
  std::atomic<bool> _failed{false};
  std::atomic<int> _nThread;
  std::atomic<qint64> _availableMemBytes;
  mutable std::atomic<qint64> _counter{0};
  mutable std::atomic<qint64> _counterMax{0};
  mutable std::atomic<int> _percent{0};

  QMutex _stateMutex;         // orders starts, stop requests and ends of runs
  mutable QMutex _textMutex;  // guards what follows
  QString _message;
  mutable QString _detail;
  std::unique_ptr<NbeError> _error;
};
