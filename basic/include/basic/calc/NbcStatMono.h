#pragma once

#include "basic/calc/NbcStatBasic.h"

/// Statistics of one variable with its higher moments and other means. Values that were not set are
/// NbbGlobal::D_FFFF.
class NbcStatMono : public NbcStatBasic
{
public:
  NbcStatMono() = default;
  explicit NbcStatMono(const NbcStatBasic &statistics) : NbcStatBasic(statistics) {}

  /// Third standardised moment.
  void setSkewness(double skewness) { _skewness = skewness; }
  double getSkewness() const { return _skewness; }

  /// Fourth standardised moment: 3 for a Gaussian.
  void setKurtosis(double kurtosis) { _kurtosis = kurtosis; }
  double getKurtosis() const { return _kurtosis; }

  void setGeometricMean(double mean) { _geometricMean = mean; }
  double getGeometricMean() const { return _geometricMean; }

  void setHarmonicMean(double mean) { _harmonicMean = mean; }
  double getHarmonicMean() const { return _harmonicMean; }

  QString debug(int level) const override;

private:
  double _skewness = NbbGlobal::D_FFFF;
  double _kurtosis = NbbGlobal::D_FFFF;
  double _geometricMean = NbbGlobal::D_FFFF;
  double _harmonicMean = NbbGlobal::D_FFFF;
};
