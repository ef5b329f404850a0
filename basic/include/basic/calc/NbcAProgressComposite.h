#pragma once

#include "basic/calc/NbcAProgress.h"
#include "basic/error/NbeProgrammingError.h"

#include <QMap>
#include <QMutexLocker>
#include <QObject>
#include <QPointer>
#include <QStringList>

/// A run made of registered sub-progresses that are run one after another, in order, each on its
/// own thread and with its share of the counter.
///
/// `Base` is NbcAProgress or a class derived from it. The composite owns what is registered: those
/// that still exist are deleted by _reset() and by the destructor. Pointers are guarded: a
/// sub-progress that is destroyed elsewhere (a member of the derived class, for example) is
/// forgotten.
template <class Base>
class NbcAProgressComposite : public Base
{
public:
  NbcAProgressComposite() = default;
  ~NbcAProgressComposite() override;

protected:
  /// Registers `progressable` under the unique `id`, at the end of the order (`append`) or at its
  /// front. `message` is shown while it runs (its own progress message when empty); `weight` is its
  /// share of the counter in units of 100.
  void _registerProgressable(const QString &id, Base *progressable, const QString &message,
                             int weight, bool append = true);

  /// Waits for the running sub-progress, deletes all that still exist and forgets them.
  void _reset();

  const QStringList &_getIds() const { return _ids; }

  /// Id of the sub-progress under way; empty when there is none.
  QString _getCurrentProgressableId() const;

  /// The sub-progress registered under `id`; null when it is unknown or was destroyed.
  Base *_getProgressable(const QString &id) const { return _progressables.value(id).data(); }

  /// The final checks of Base. A base whose checks acquire what the sub-progresses need overrides
  /// or specialises this operation.
  void _doFinalChecks() override { Base::_doFinalChecks(); }

  void _doRun() override;
  void _cleanup() override;

  /// Copies the detail of the sub-progress under way.
  void _updateProgressMessageDetail() const override;

  virtual void _preProcessing();
  virtual void _postProcessing();

  /// Prepares sub-progress `id`; false means skip it.
  virtual bool _prepareProgressable(const QString &id) = 0;

  /// Takes the results of sub-progress `id`.
  virtual void _progressableFinished(const QString &id) = 0;

private:
  void _setRunningProgressable(Base *progressable);
  void _runProgressable(const QString &id);
  void _waitForRunning();

  QStringList _ids;
  QMap<QString, QString> _messages;
  QMap<QString, int> _weights;
  QMap<QString, QPointer<Base>> _progressables;
  QPointer<Base> _running;
  mutable QMutex _runningMutex;  // guards _running
};

template <class Base>
NbcAProgressComposite<Base>::~NbcAProgressComposite()
{
  this->_finish();
  _reset();
}

template <class Base>
void NbcAProgressComposite<Base>::_registerProgressable(const QString &id, Base *progressable,
                                                        const QString &message, int weight,
                                                        bool append)
{
  if (_ids.contains(id))
    throw NbeProgrammingError(QStringLiteral("Id '%1' must be unique.").arg(id));
  if (append)
    _ids.append(id);
  else
    _ids.prepend(id);
  _progressables.insert(id, progressable);
  _messages.insert(id, message);
  _weights.insert(id, weight);
}

template <class Base>
void NbcAProgressComposite<Base>::_reset()
{
  _waitForRunning();
  for (const QPointer<Base> &progressable : qAsConst(_progressables))
    delete progressable.data();
  _ids.clear();
  _messages.clear();
  _weights.clear();
  _progressables.clear();
}

template <class Base>
QString NbcAProgressComposite<Base>::_getCurrentProgressableId() const
{
  QMutexLocker lock(&_runningMutex);
  return _running.isNull() ? QString() : _progressables.key(_running);
}

template <class Base>
void NbcAProgressComposite<Base>::_doRun()
{
  this->_doFinalChecks();
  _preProcessing();

  qint64 totalWeight = 0;
  for (const QString &id : qAsConst(_ids))
    totalWeight += _weights.value(id, 0);
  this->_initCounter((totalWeight + 1) * 100);

  const QStringList ids = _ids;
  for (const QString &id : ids) {
    _runProgressable(id);
    this->_checkForProgressStop();
  }

  _setRunningProgressable(nullptr);
  _postProcessing();
  this->_incrementCounter(100);
}

template <class Base>
void NbcAProgressComposite<Base>::_runProgressable(const QString &id)
{
  Base *progressable = _getProgressable(id);
  _setRunningProgressable(progressable);

  const QString message = _messages.value(id);
  if (!message.isEmpty() || progressable)
    this->setProgressMessage(message.isEmpty() ? progressable->getProgressMessage() : message);

  const qint64 share = qint64(_weights.value(id, 0)) * 100;
  if (!_prepareProgressable(id)) {
    this->_incrementCounter(share);
    return;
  }
  progressable = _getProgressable(id);
  if (!progressable)
    throw NbeProgrammingError(QStringLiteral("Id '%1' has no object to run.").arg(id));
  this->_runSubProgress(*progressable, false, share);
  _progressableFinished(id);
}

template <class Base>
void NbcAProgressComposite<Base>::_cleanup()
{
  _waitForRunning();
  Base::_cleanup();
}

template <class Base>
void NbcAProgressComposite<Base>::_updateProgressMessageDetail() const
{
  QString detail;
  {
    QMutexLocker lock(&_runningMutex);
    if (_running.isNull())
      return;
    detail = _running->getProgressMessageDetail();
  }
  this->_setProgressMessageDetail(detail);
}

template <class Base>
void NbcAProgressComposite<Base>::_preProcessing()
{
  this->_setProgressMessageDetail(QObject::tr("Pre Processing..."));
}

template <class Base>
void NbcAProgressComposite<Base>::_postProcessing()
{
  this->_setProgressMessageDetail(QObject::tr("Post processing..."));
}

template <class Base>
void NbcAProgressComposite<Base>::_setRunningProgressable(Base *progressable)
{
  QMutexLocker lock(&_runningMutex);
  _running = progressable;
}

template <class Base>
void NbcAProgressComposite<Base>::_waitForRunning()
{
  QMutexLocker lock(&_runningMutex);
  if (!_running.isNull())
    _running->wait();
  _running.clear();
}
