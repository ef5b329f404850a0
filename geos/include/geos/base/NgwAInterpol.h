#pragma once

#include "geos/base/NgwAThread.h"

class NbdAData;
class NgcAInterpol;

/// Worker of an interpolation: takes buffers of targets until there is none left, estimates them
/// and gives them back.
class NgwAInterpol : public NgwAThread
{
public:
  NgwAInterpol(NgwThreadPool *pool, NgcAInterpol &calculator);

protected:
  void _run() override;

  /// Once, before the first buffer.
  virtual void _initialize() = 0;

  /// Estimates the selected targets of a buffer.
  virtual void _processBuffer(NbdAData &buffer) = 0;

  /// Throws the interruption when the calculator was asked to stop or has failed.
  void _checkForStop() const;

private:
  NgcAInterpol &_interpol;
};
