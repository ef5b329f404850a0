#pragma once

#include "geos/vmodel/NgmAVStructAlpha.h"

/// Power generalized covariance C0 - u^alpha, 0 <= alpha <= 2, for constant means at least.
///
/// C0 = k (D / scale)^alpha, where D is the field size of the context and k depends on the
/// dimension of space and alpha; 0 without a field size. It is infinite for alpha = 2 with a field
/// size.
class NgmVStructPower : public NgmAVStructAlpha
{
public:
  NgmVStructPower();
  NgmVStructPower(const NgmVStructPower &) = default;

  void setAuxiliaryParameter(int index, double value) override;

  /// 0 for any index but 0.
  double getAuxiliaryValue(int index) const override;
  int getIRFDegree() const override { return 0; }
  bool isSimulatableTB() const override { return false; }
  bool isScaleFactorSignificant() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;

protected:
  void _setScaleFactor(double practicalRange) override;
  void _setupParameters() override;
  double _calcPracticalFactor() const override;

private:
  double _constant = 0.;
};
