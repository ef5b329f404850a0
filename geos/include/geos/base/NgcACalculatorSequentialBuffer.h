#pragma once

#include "geos/base/NgcACalculatorSequential.h"

/// A calculator that processes the buffers of its data set one after another on its own thread.
class NgcACalculatorSequentialBuffer : public NgcACalculatorSequential
{
public:
  ~NgcACalculatorSequentialBuffer() override;

protected:
  NgcACalculatorSequentialBuffer();

  void _doRun() override;

private:
  void _processBuffers(NgdABufferManager &manager);
};
