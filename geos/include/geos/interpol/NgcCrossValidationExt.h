#pragma once

#include "geos/interpol/NgcAKrigingExt.h"

class NgcCrossValidation;
class NgmSearchPartition;
struct XValRes;

/// Cross-validation with external drifts brought from grids.
class NgcCrossValidationExt : public NgcAKrigingExt
{
public:
  explicit NgcCrossValidationExt(const QString &key);
  ~NgcCrossValidationExt() override;

  /// Not available: fails.
  void test(qint64 sampleNumber, NgmAInterpolTestResult &result) override;

  // As those of NgcAInterpol and NgcCrossValidation.

  void setRejectionMode(const NgcERejectionMode &mode);
  void setRejectionVarIndex(int index);
  void setRejectionPartition(const NgmSearchPartition &partition);
  void setRejectionAuxVarOption(const NgcERejectionAuxVarOption &option);
  const XValRes &getResults() const;

private:
  NgcCrossValidation &_getValidation() const;
};
