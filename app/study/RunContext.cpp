#include "app/study/RunContext.h"

#include "app/console/Progress.h"
#include "basic/calc/NbcAProgress.h"

namespace orvenal {

void RunContext::run(NbcAProgress &calculator, const QString &action, qint64 nUnits,
                     const QString &units, Weight weight) const
{
  if (threads > 0)
    calculator.setNThread(threads);
  if (memory > 0)
    calculator.setAvailableMemBytes(memory);
  Progress progress(console, action, nUnits, units);
  runCalculator(calculator, progress);
  progress.finish(weight == SIDE_STEP);
}

}  // namespace orvenal
