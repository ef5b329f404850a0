#include "basic/calc/NbcAProgress.h"

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbSysInfo.h"
#include "basic/calc/NbcThread.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeException.h"
#include "basic/error/NbeGuard.h"

#include <QMutexLocker>

#include <algorithm>
#include <typeinfo>

namespace {

/// How often a waiting run looks at the sub-progress; its end is noticed at once.
constexpr unsigned long SUB_PROGRESS_POLL_MS = 20;

int percentOf(qint64 counter, qint64 maximum)
{
  if (maximum <= 0 || counter <= 0)
    return 0;
  if (counter >= maximum)
    return 100;
  // Beyond this maximum 100 * counter could overflow.
  constexpr qint64 large = std::numeric_limits<qint64>::max() / 100;
  return int(maximum < large ? counter * 100 / maximum
                             : std::min<qint64>(99, counter / (maximum / 100)));
}

}  // namespace

NbcAProgress::NbcAProgress(QObject *parent)
    : QThread(parent),
      _nThread(NbbSysInfo::idealThreadCount()),
      _availableMemBytes(NbbSysInfo::idealMaximumMemory())
{
}

NbcAProgress::~NbcAProgress()
{
  NbcAProgress::_finish();
}

void NbcAProgress::start(Priority priority)
{
  {
    QMutexLocker lock(&_stateMutex);
    if (isRunning())
      return;
    _state = RUNNING;
  }
  QThread::wait();  // the thread of the last run may still be closing
  QThread::start(priority);
  if (!QThread::isRunning() && !QThread::isFinished()) {
    _resetForRun();
    _keepError(NbeError(NbeError::MEMORY, QObject::tr("The system cannot start another thread.")));
    _endRun(false);
  }
}

NbcAProgress::State NbcAProgress::execute()
{
  {
    QMutexLocker lock(&_stateMutex);
    if (isRunning())
      NBE_FAIL(QStringLiteral("A run is already under way."));
    _state = RUNNING;
  }
  return _runGuarded();
}

void NbcAProgress::run()
{
  NbcThread::setThreadNameFromClassName(NbbGlobal::demangle(typeid(*this).name()));
  _state = RUNNING;
  _runGuarded();
}

void NbcAProgress::stop()
{
  QMutexLocker lock(&_stateMutex);
  if (isRunning())
    _stopRequested = true;
}

QString NbcAProgress::getErrorMessage() const
{
  QMutexLocker lock(&_textMutex);
  return _error ? _error->getMessage() : QString();
}

NbeError::ErrorType NbcAProgress::getErrorType() const
{
  QMutexLocker lock(&_textMutex);
  return _error ? _error->getErrorType() : NbeError::NO_ERROR_TYPE;
}

qint64 NbcAProgress::getCounter() const
{
  _updateCounter();
  return _counter.load(std::memory_order_relaxed);
}

int NbcAProgress::getPercent() const
{
  return percentOf(getCounter(), getCounterMax());
}

void NbcAProgress::setProgressMessage(const QString &message)
{
  {
    QMutexLocker lock(&_textMutex);
    if (message == _message)
      return;
    _message = message;
  }
  Q_EMIT messageChanged(message);
}

QString NbcAProgress::getProgressMessage() const
{
  QMutexLocker lock(&_textMutex);
  return _message;
}

QString NbcAProgress::getProgressMessageDetail() const
{
  _updateProgressMessageDetail();
  QMutexLocker lock(&_textMutex);
  return _detail;
}

void NbcAProgress::setNThread(int count)
{
  _nThread = std::max(1, count);
}

void NbcAProgress::setAvailableMemBytes(qint64 bytes)
{
  _availableMemBytes = bytes;
}

void NbcAProgress::_initCounter(qint64 maximum) const
{
  _counterMax.store(maximum, std::memory_order_relaxed);
  _setCounter(0);
}

void NbcAProgress::_incrementCounter(qint64 increment) const
{
  _counter.fetch_add(increment, std::memory_order_relaxed);
  _publishPercent(increment < 0);
}

void NbcAProgress::_setCounter(qint64 value) const
{
  _counter.store(value, std::memory_order_relaxed);
  _publishPercent(true);
}

/// Workers may come here in another order than they counted in: the percent that increments publish
/// only grows.
void NbcAProgress::_publishPercent(bool mayDecrease) const
{
  const int percent = percentOf(_counter.load(std::memory_order_relaxed), getCounterMax());
  int published = _percent.load(std::memory_order_relaxed);
  do {
    if (percent == published || (percent < published && !mayDecrease))
      return;
  } while (!_percent.compare_exchange_weak(published, percent));
  Q_EMIT progressChanged(percent);
}

void NbcAProgress::_setProgressMessageDetail(const QString &detail) const
{
  {
    QMutexLocker lock(&_textMutex);
    if (detail == _detail)
      return;
    _detail = detail;
  }
  Q_EMIT detailChanged(detail);
}

void NbcAProgress::_setFailed()
{
  _failed = true;
}

void NbcAProgress::_checkForProgressStop() const
{
  if (_mustStop())
    throw NbeException();
}

void NbcAProgress::_cleanup() {}

void NbcAProgress::_errorOccurred(const NbeError &) {}

void NbcAProgress::_doFinalChecks() {}

void NbcAProgress::_updateProgressMessageDetail() const {}

void NbcAProgress::_updateCounter() const {}

void NbcAProgress::_runSubProgress(NbcAProgress &sub, bool ignoreFailure, qint64 share)
{
  _checkForProgressStop();
  if (sub.isRunning())
    NBE_FAIL(QStringLiteral("The sub-progress is already running."));
  sub.setNThread(getNThread());
  sub.setAvailableMemBytes(getAvailableMemBytes());
  sub.start();
  _waitSubProgress(sub, ignoreFailure, share);
  _checkForProgressStop();
}

void NbcAProgress::_waitSubProgress(NbcAProgress &sub, bool ignoreFailure, qint64 share)
{
  qint64 given = 0;
  while (!sub.wait(SUB_PROGRESS_POLL_MS)) {
    if (_mustStop())
      sub.stop();
    const qint64 maximum = sub.getCounterMax();
    const double done = maximum > 0 ? double(sub.getCounter()) / double(maximum) : 0.;
    const qint64 reached = qint64(std::clamp(done, 0., 1.) * double(share));
    if (reached > given) {
      _incrementCounter(reached - given);
      given = reached;
    }
    _updateProgressMessageDetail();
  }
  _incrementCounter(share - given);

  if (ignoreFailure || sub.isCompleted())
    return;
  if (sub.getState() == INTERRUPTED)
    stop();
  sub._rethrowError();
}

void NbcAProgress::_finish()
{
  stop();
  QThread::wait();
}

NbcAProgress::State NbcAProgress::_runGuarded()
{
  _resetForRun();
  const auto body = [this] {
    _checkForProgressStop();
    _doRun();
  };
  const bool done = _attempt(body, true);
  const bool cleaned = _attempt([this] { _cleanup(); }, false);
  return _endRun(done && cleaned);
}

void NbcAProgress::_resetForRun()
{
  _initCounter(0);
  _setProgressMessageDetail(QString());
  QMutexLocker lock(&_textMutex);
  _error.reset();
}

/// Runs a step of the run; an error is kept and, when `report` is set, told to _errorOccurred().
bool NbcAProgress::_attempt(const std::function<void()> &step, bool report)
{
  try {
    NbeGuard::run(step);
    return true;
  } catch (const NbeException &interruption) {
    _keepError(interruption);
  } catch (const NbeError &error) {
    _keepError(error);
    if (report)
      _attempt([this, &error] { _errorOccurred(error); }, false);
  }
  return false;
}

/// Keeps the first error of a run.
void NbcAProgress::_keepError(const NbeError &error)
{
  QMutexLocker lock(&_textMutex);
  if (!_error)
    _error.reset(error.clone());
}

NbcAProgress::State NbcAProgress::_endRun(bool completed)
{
  QMutexLocker lock(&_stateMutex);
  State state = COMPLETED;
  if (_stopRequested || (getErrorType() == NbeError::INTERRUPTION && !_failed)) {
    // Workers may have left their loops without an error: the results are not whole.
    state = INTERRUPTED;
    _keepError(NbeException());
  } else if (!completed || _failed) {
    state = FAILED;
    _keepError(NbeError(NbeError::UNKNOWN, QString()));
  }
  _stopRequested = false;
  _failed = false;
  _state = state;
  return state;
}

/// Throws the error of the last run, with its class.
void NbcAProgress::_rethrowError() const
{
  std::unique_ptr<NbeError> error;
  {
    QMutexLocker lock(&_textMutex);
    if (_error)
      error.reset(_error->clone());
  }
  if (error)
    error->raise();
}
