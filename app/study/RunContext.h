#pragma once

#include <QtGlobal>

class NbcAProgress;
class QString;

namespace orvenal {

class Console;

/// With what the calculators of a run work.
struct RunContext
{
  Console &console;
  int threads = 0;    ///< 0 leaves it to the library
  qint64 memory = 0;  ///< bytes; 0 leaves it to the library

  /// Applies the settings to a calculator and runs it, showing its progress; see runCalculator().
  enum Weight { MAIN_STEP, SIDE_STEP };
  void run(NbcAProgress &calculator, const QString &action, qint64 nUnits, const QString &units,
           Weight weight = MAIN_STEP) const;
};

}  // namespace orvenal
