#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbIDebuggable.h"

/// What a cross-validation tells: of one sample, or the means over all of them.
///
/// With z the true value, z* the estimate from the other samples and s its kriging standard
/// deviation: error z* - z, standardized error (z* - z) / s. Undefined where s vanishes, and before
/// anything was computed. The roots are those of the squares beside them (of the mean squares, for
/// means).
struct XValRes : public NbbIDebuggable
{
  double realValue = NbbGlobal::D_FFFF;
  double estimation = NbbGlobal::D_FFFF;
  double standardDeviation = NbbGlobal::D_FFFF;
  double error = NbbGlobal::D_FFFF;
  double squaredError = NbbGlobal::D_FFFF;
  double standardizedError = NbbGlobal::D_FFFF;
  double squaredStandardizedError = NbbGlobal::D_FFFF;
  double rootSquaredError = NbbGlobal::D_FFFF;
  double rootSquaredStandardizedError = NbbGlobal::D_FFFF;

  /// Everything becomes undefined.
  void reset() { *this = XValRes(); }

  /// One line per value; the level has no effect.
  QString debug(int level) const override;
};
