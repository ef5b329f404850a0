#include "app/console/Progress.h"

#include "app/base/NumberText.h"
#include "app/console/Console.h"
#include "app/console/Interruption.h"
#include "basic/calc/NbcAProgress.h"
#include "basic/error/NbeException.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr int barWidth = 30;
constexpr double secondsToFirstLine = 1.;
constexpr double secondsBetweenLines = 5.;
constexpr unsigned long pollMilliseconds = 50;

/// One line names all: the parts by which a failure text is built end with line breaks.
void throwFailure(const NbcAProgress &calculator)
{
  QString message = calculator.getErrorMessage().trimmed();
  if (calculator.getErrorType() == NbeError::MEMORY)
    message += QObject::tr("\n--memory, or \"memory\" in the job, gives it more");
  throw NbeError(calculator.getErrorType(), message);
}

}  // namespace

Progress::Progress(Console &console, const QString &action, qint64 nUnits, const QString &units)
    : _console(console),
      _action(action),
      _nUnits(nUnits),
      _units(units),
      _nextLine(secondsToFirstLine)
{
  _timer.start();
}

void Progress::update(double fraction)
{
  const double seconds = double(_timer.elapsed()) / 1000.;
  if (_console.isTerminal()) {
    _console.showTransient(barLine(_action, fraction, seconds, _nUnits, _units));
  } else if (seconds >= _nextLine) {
    _nextLine = seconds + secondsBetweenLines;
    _console.report(
        QObject::tr("%1: %2% after %3")
            .arg(_action, QString::number(int(100. * fraction)), durationText(seconds)));
  }
}

void Progress::finish(bool isSideStep)
{
  constexpr double shortest = 0.001;  // that the timer tells
  const double seconds = std::max(shortest, double(_timer.elapsed()) / 1000.);
  _console.showTransient(QString());
  if (isSideStep && seconds < secondsToFirstLine)
    return;
  const QString rate = groupedText(std::llround(double(_nUnits) / seconds));
  _console.report(QObject::tr("%1: %2 %3 in %4 (%5 %3/s)")
                      .arg(_action, groupedText(_nUnits), _units, durationText(seconds), rate));
}

QString Progress::barLine(const QString &action, double fraction, double seconds, qint64 nUnits,
                          const QString &units)
{
  const double part = std::clamp(fraction, 0., 1.);
  const int filled = int(part * barWidth);
  QString line = QObject::tr("%1 [%2%3] %4%")
                     .arg(action, QString(filled, '#'), QString(barWidth - filled, '.'),
                          QString::number(int(100. * part)).rightJustified(3));
  if (part <= 0. || seconds <= 0.)
    return line;
  const double rate = part * double(nUnits) / seconds;
  line += QObject::tr("  %1 %2/s").arg(groupedText(std::llround(rate)), units);
  if (part < 1.)
    line += QObject::tr("  %1 left").arg(durationText(std::ceil(seconds * (1. - part) / part)));
  return line;
}

void runCalculator(NbcAProgress &calculator, Progress &progress)
{
  calculator.start();
  while (!calculator.wait(pollMilliseconds)) {
    progress.update(double(calculator.getCounter()) /
                    double(std::max<qint64>(1, calculator.getCounterMax())));
    if (Interruption::isRequested())
      calculator.stop();
  }
  if (calculator.getState() == NbcAProgress::INTERRUPTED)
    throw NbeException();
  if (!calculator.isCompleted())
    throwFailure(calculator);
  progress.update(1.);
}

}  // namespace orvenal
