#include "basic/calc/NbcThread.h"

#include <QByteArray>
#include <QString>

#ifdef Q_OS_LINUX
#include <pthread.h>
#endif

void NbcThread::setThreadNameFromClassName(const QString &className)
{
#ifdef Q_OS_LINUX
  constexpr int longest = 15;
  pthread_setname_np(pthread_self(), className.toLatin1().left(longest).constData());
#else
  Q_UNUSED(className)
#endif
}
