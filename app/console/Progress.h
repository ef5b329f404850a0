#pragma once

#include <QElapsedTimer>
#include <QString>

class NbcAProgress;

namespace orvenal {

class Console;

/// Shows how far a computation is: a moving bar with rate and time left on a terminal, a plain line
/// now and then elsewhere, and a line at the end.
class Progress
{
public:
  /// What is done ("Kriging"), and how many of what ("nodes") it goes through.
  Progress(Console &console, const QString &action, qint64 nUnits, const QString &units);

  void update(double fraction);

  /// The line at the end; none for a side step that nobody waited for.
  void finish(bool isSideStep);

  /// The bar of a terminal: "Kriging [#####.....]  50%  1,234 nodes/s  0:05 left".
  static QString barLine(const QString &action, double fraction, double seconds, qint64 nUnits,
                         const QString &units);

private:
  Console &_console;
  QString _action;
  qint64 _nUnits;
  QString _units;
  QElapsedTimer _timer;
  double _nextLine;
};

/// Runs a calculator on its thread and shows its progress. A failure is thrown as the calculator's
/// error, a stop request from outside as NbeException.
void runCalculator(NbcAProgress &calculator, Progress &progress);

}  // namespace orvenal
