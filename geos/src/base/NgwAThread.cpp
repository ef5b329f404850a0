#include "geos/base/NgwAThread.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcAProgress.h"
#include "basic/calc/NbcThread.h"
#include "basic/error/NbeException.h"
#include "basic/error/NbeGuard.h"
#include "geos/base/NgwThreadPool.h"
#include "geos/matrix/NgmNumericLibrary.h"

#include <typeinfo>

NgwAThread::NgwAThread(NgwThreadPool *pool) : _pool(pool) {}

NgwAThread::~NgwAThread()
{
  NgmNumericLibrary::freeThreadBuffers();
}

void NgwAThread::run()
{
  NbcThread::setThreadNameFromClassName(NbbGlobal::demangle(typeid(*this).name()));
  bool ok = false;
  try {
    NbeGuard::run([this] { _run(); });
    ok = true;
  } catch (const NbeException &) {
    _message.clear();
  } catch (const NbeError &error) {
    _sendErrorToPool(error);
  }
  _sendStatusToPool(ok);
}

void NgwAThread::_incrementCounter(qint64 n)
{
  if (_perSampleProgress && _progress)
    _progress->_incrementCounter(n);
}

void NgwAThread::_sendErrorToPool(const NbeError &error)
{
  _message = error.getMessage() + QStringLiteral("\n");
}

void NgwAThread::_sendStatusToPool(bool ok)
{
  if (!ok)
    _pool->reportFailure(_message);
}
