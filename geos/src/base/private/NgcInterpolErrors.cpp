#include "base/private/NgcInterpolErrors.h"

#include <QMutexLocker>
#include <QObject>

#include <iterator>

namespace {

constexpr int maximumReportedErrors = 10;

}  // namespace

void NgcInterpolErrors::clear()
{
  const QMutexLocker locker(&_mutex);
  _counts.clear();
  _first.clear();
  _stopMessage.clear();
}

void NgcInterpolErrors::add(const QString &message, Ngc::InterpolError type, qint64 sampleNumber)
{
  const QMutexLocker locker(&_mutex);
  ++_counts[type];
  _first.emplace(sampleNumber, message);
  if (_first.size() > maximumReportedErrors)
    _first.erase(std::prev(_first.end()));
}

QString NgcInterpolErrors::stopAt(const QString &message, Ngc::InterpolError type)
{
  const QMutexLocker locker(&_mutex);
  ++_counts[type];
  if (_stopMessage.isEmpty())
    _stopMessage =
        QObject::tr("The interpolation process has been stopped due to the following error:") +
        QLatin1Char('\n') + message;
  return _stopMessage;
}

int NgcInterpolErrors::getCount() const
{
  const QMutexLocker locker(&_mutex);
  return _count();
}

bool NgcInterpolErrors::has(Ngc::InterpolError type) const
{
  const QMutexLocker locker(&_mutex);
  return _counts.value(type) > 0;
}

QString NgcInterpolErrors::getMessage() const
{
  const QMutexLocker locker(&_mutex);
  if (!_stopMessage.isEmpty() || _first.empty())
    return _stopMessage;

  QString text = QObject::tr("The interpolation process encountered errors:") + QLatin1Char('\n');
  int number = 0;
  for (const auto &error : _first)
    text += QObject::tr("Error #") + QString::number(++number) + QLatin1String(": ") +
            error.second + QLatin1Char('\n');
  if (_count() > maximumReportedErrors)
    text += QObject::tr("Only 10 first errors are reported...");
  return text;
}

int NgcInterpolErrors::_count() const
{
  int count = 0;
  for (const int ofType : _counts)
    count += ofType;
  return count;
}
