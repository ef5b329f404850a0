#include "geos/base/NgwAInterpol.h"

#include "basic/data/NbdAData.h"
#include "geos/base/NgcAInterpol.h"

#include <memory>

NgwAInterpol::NgwAInterpol(NgwThreadPool *pool, NgcAInterpol &calculator)
    : NgwAThread(pool), _interpol(calculator)
{
}

void NgwAInterpol::_run()
{
  _checkForStop();
  _initialize();
  for (;;) {
    _checkForStop();
    const std::unique_ptr<NbdAData> buffer(_interpol.getNextBuffer());
    if (!buffer)
      return;
    _processBuffer(*buffer);
    _interpol.saveBuffer(*buffer);
  }
}

void NgwAInterpol::_checkForStop() const
{
  _interpol._checkForProgressStop();
}
