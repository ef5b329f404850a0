#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/base/NbbIDebuggable.h"
#include "geos/base/NgaIAdditive.h"

class NbcStatBasic;
class NbcStatMono;

/// Running sums of one variable (or of one variable over the samples where a second one is defined
/// too), from which its statistics are derived.
///
/// An undefined value (not below 1e30, or not finite) counts in the total only. A value whose
/// weight is undefined or not positive counts in the total, the unweighted count and the unweighted
/// extremes only.
class NgaStatSum : public NgaIAdditive, public NbbIDebuggable
{
public:
  /// `degree` is the highest moment kept: 1, 2, or 4.
  explicit NgaStatSum(int degree = 2) : _degree(degree) {}

  void addValue(double value);
  void addValue(double value, double weight);

  /// Add x where y is defined too, and their product.
  void addPair(double x, double y);
  void addPair(double x, double y, double weight);

  /// Add `n` values (weights may be null), with the same sums up to rounding as one by one. The
  /// bits depend on the values and their order alone.
  void addValues(int n, const double *values, const double *weights = nullptr);

  /// Adds n pairs (x, y) to `xy` and n pairs (y, x) to `yx`.
  static void addPairs(NgaStatSum &xy, NgaStatSum &yx, int n, const double *x, const double *y,
                       const double *weights = nullptr);

  void doSum(const NgaIAdditive &other) override;
  NgaStatSum *clone() const override { return new NgaStatSum(*this); }
  QString debug(int level) const override;

  qint64 getNTotal() const { return _nTotal; }
  qint64 getNDefined() const { return _nDefined; }
  qint64 getNDefinedNoW() const { return _nDefinedNoW; }

  /// Extremes; NbbGlobal::D_BIG_POSITIVE and D_BIG_NEGATIVE while there is no value.
  double getMinimum() const { return _min; }
  double getMaximum() const { return _max; }
  double getMinimumNoW() const { return _minNoW; }
  double getMaximumNoW() const { return _maxNoW; }

  double getSumXY() const { return _sumXY; }

  /// Weighted sums of ln v and 1 / v over the strictly positive values.
  double getSumLog() const { return _sumLog; }
  double getSumInverse() const { return _sumInverse; }

  /// Weighted sum of v^k, k from 0 to the degree.
  double getMoment(int k) const { return _moments[k]; }
  int getDegree() const { return _degree; }

  /// Counts, extremes and weight; with a positive weight also mean and population variance.
  void fill(NbcStatBasic &record) const;

  /// The same with geometric and harmonic means (when the minimum is positive) and, for a degree
  /// above 2, skewness and kurtosis (0 for a constant).
  void fill(NbcStatMono &record) const;

private:
  friend class NgaStatBlockSum;

  qint64 _nTotal = 0;
  qint64 _nDefined = 0;
  qint64 _nDefinedNoW = 0;
  double _min = NbbGlobal::D_BIG_POSITIVE;
  double _max = NbbGlobal::D_BIG_NEGATIVE;
  double _minNoW = NbbGlobal::D_BIG_POSITIVE;
  double _maxNoW = NbbGlobal::D_BIG_NEGATIVE;
  double _sumXY = 0.;
  double _sumLog = 0.;
  double _sumInverse = 0.;
  double _moments[5] = {0., 0., 0., 0., 0.};
  int _degree;
};
