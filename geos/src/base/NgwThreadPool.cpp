#include "geos/base/NgwThreadPool.h"

#include <QMutexLocker>
#include <QObject>

NgwThreadPool::NgwThreadPool() : _ok(true)
{
  setMaxThreadCount(1);
  setExpiryTimeout(-1);
}

NgwThreadPool::~NgwThreadPool() = default;

QString NgwThreadPool::getMessage() const
{
  QMutexLocker lock(&_mutex);
  return _message;
}

void NgwThreadPool::reset()
{
  QMutexLocker lock(&_mutex);
  _ok = true;
  _message.clear();
}

void NgwThreadPool::reportFailure(const QString &workerMessage)
{
  const QString text = workerMessage.isEmpty()
                           ? QObject::tr("Calculator Interrupted by the User.")
                           : QObject::tr("Thread failed:") + QStringLiteral("\n") + workerMessage;
  QMutexLocker lock(&_mutex);
  if (_ok.exchange(false))
    _message.append(text);
}
