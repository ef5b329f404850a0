#include "geos/interpol/NgcKriging.h"

#include "geos/interpol/NgcAKrigingWorker.h"

#include <QObject>

NgcKriging::NgcKriging(const QString &key) : NgcAKriging(key) {}

NgcKriging::~NgcKriging()
{
  _finish();
}

void NgcKriging::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initialization"));
  NgcAKriging::_preProcessing();
}

void NgcKriging::_preLaunchThreads()
{
  NgcAKriging::_preLaunchThreads();
  _setProgressMessageDetail(isBlockInterpolation() ? QObject::tr("Kriging Target Blocks...")
                                                   : QObject::tr("Kriging Target Points..."));
}

void NgcKriging::_postProcessing()
{
  _setProgressMessageDetail(QObject::tr("Done"));
}

NgwAThread *NgcKriging::_createComputingThread(NgwThreadPool *pool)
{
  return new NgcAKriging::Worker(pool, *this);
}
