#include "geos/interpol/NgmCrossValidationTestResult.h"

NgmCrossValidationTestResult::NgmCrossValidationTestResult() = default;

NgmCrossValidationTestResult::~NgmCrossValidationTestResult() = default;

void NgmCrossValidationTestResult::reset()
{
  NgmKrigingTestResult::reset();
  _xVal.reset();
}

QString NgmCrossValidationTestResult::toString(int level) const
{
  return NgmKrigingTestResult::toString(level) + QLatin1Char('\n') + _xVal.debug(level);
}
