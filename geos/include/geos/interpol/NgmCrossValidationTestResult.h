#pragma once

#include "geos/interpol/NgmKrigingTestResult.h"
#include "geos/interpol/XValRes.h"

/// What a cross-validation did at one sample: the kriging from the other samples, and its errors.
class NgmCrossValidationTestResult : public NgmKrigingTestResult
{
public:
  NgmCrossValidationTestResult();
  ~NgmCrossValidationTestResult() override;

  void reset() override;

  const XValRes &getXVal() const { return _xVal; }
  void setXVal(const XValRes &xVal) { _xVal = xVal; }

  /// The kriging's text, then the errors.
  QString toString(int level) const override;

private:
  XValRes _xVal;
};
