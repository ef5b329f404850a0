#pragma once

#include "geos/interpol/NgcAKrigingWorker.h"
#include "geos/interpol/XValRes.h"

#include <vector>

/// Kriges samples from the others and writes their errors.
class NgwCrossValidation : public NgcAKriging::Worker
{
public:
  NgwCrossValidation(NgwThreadPool *pool, NgcAKriging &calculator);
  ~NgwCrossValidation() override;

  /// The errors of an estimate with its kriging variance, where all three are defined; those that
  /// are standardized also want a standard deviation of 1e-30 or more. A negative variance fails.
  static XValRes calcErrors(double realValue, double estimate, double variance);

protected:
  void _bufferStarted(NbdAData &buffer) override;
  void _targetKriged(NbdAData &buffer, int position) override;

private:
  /// Columns of the buffer that the errors of one variable are written to; null where nothing is
  /// asked for.
  struct _Outputs
  {
    double *error = nullptr;
    double *squaredError = nullptr;
    double *standardizedError = nullptr;
    double *squaredStandardizedError = nullptr;
  };

  double *_findColumn(const NbdAData &buffer, const QString &role, int variable) const;

  /// The value of the sample that is left out; undefined for a variable that is not left out.
  double _getRealValue(int variable) const;
  void _fillTestResult(const NbdAData &buffer, int position);

  std::vector<_Outputs> _outputs;  // by variable
};
