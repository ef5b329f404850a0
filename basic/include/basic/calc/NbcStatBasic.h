#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbIDebuggable.h"

/// Univariate statistics of one variable, with and without weights.
///
/// A record only: nothing is computed here but the standard deviation from the variance. Values
/// that were not set are NbbGlobal::D_FFFF, counts and the weight are 0. Variance is the population
/// variance. Names ending in NoW are the unweighted values.
class NbcStatBasic : public NbbIDebuggable
{
public:
  NbcStatBasic() = default;
  NbcStatBasic(const NbcStatBasic &) = default;
  NbcStatBasic &operator=(const NbcStatBasic &) = default;
  ~NbcStatBasic() override;

  /// Values seen, defined or not.
  void setNTotal(qint64 count) { _nTotal = count; }
  qint64 getNTotal() const { return _nTotal; }

  /// Defined values, whatever their weight, and defined values with a positive weight.
  void setNDefined(qint64 countNoW, qint64 count);
  void setNDefined(qint64 count) { setNDefined(count, count); }
  qint64 getNDefined() const { return _nDefined; }
  qint64 getNDefinedNoW() const { return _nDefinedNoW; }

  void setMinimum(double minimumNoW, double minimum);
  void setMinimum(double minimum) { setMinimum(minimum, minimum); }
  double getMinimum() const { return _minimum; }
  double getMinimumNoW() const { return _minimumNoW; }

  void setMaximum(double maximumNoW, double maximum);
  void setMaximum(double maximum) { setMaximum(maximum, maximum); }
  double getMaximum() const { return _maximum; }
  double getMaximumNoW() const { return _maximumNoW; }

  void setMean(double mean) { _mean = mean; }
  double getMean() const { return _mean; }

  /// Sets the standard deviation too: its root, 0 for a variance that rounding made negative.
  void setVariance(double variance);
  double getVariance() const { return _variance; }

  /// Sets the standard deviation alone, for records that are read back.
  void setStandardDeviation(double deviation) { _standardDeviation = deviation; }
  double getStandardDeviation() const { return _standardDeviation; }

  /// Sum of the weights.
  void setWeight(double weight) { _weight = weight; }
  double getWeight() const { return _weight; }

  /// Standard deviation / mean; undefined when one of them is, or when the mean is 0.
  double getVariationCoefficient() const;

  /// One line per value, indented by `level` times two blanks.
  QString debug(int level) const override;

private:
  qint64 _nTotal = 0;
  qint64 _nDefined = 0;
  qint64 _nDefinedNoW = 0;
  double _weight = 0.;
  double _minimum = NbbGlobal::D_FFFF;
  double _minimumNoW = NbbGlobal::D_FFFF;
  double _maximum = NbbGlobal::D_FFFF;
  double _maximumNoW = NbbGlobal::D_FFFF;
  double _mean = NbbGlobal::D_FFFF;
  double _variance = NbbGlobal::D_FFFF;
  double _standardDeviation = NbbGlobal::D_FFFF;
};
