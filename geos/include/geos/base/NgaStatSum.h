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
///
/// Moments of order 2 to 4 are kept about the mean, so that no digits are lost where values lie far
/// from zero compared with their spread (coordinates, water levels). They are brought together
/// after Pebay (2008), Formulas for robust, one-pass parallel computation of covariances and
/// arbitrary-order statistical moments.
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

  /// Weighted sum of the products of the pairs.
  double getSumXY() const;

  /// Weighted mean of the products of the deviations of the pairs; the weight must be positive.
  double getCovariance() const { return _coMoment / _weight; }

  /// Weighted sums of ln v and 1 / v over the strictly positive values.
  double getSumLog() const { return _sumLog; }
  double getSumInverse() const { return _sumInverse; }

  /// Weighted sum of v^k, k from 0 to the degree.
  double getMoment(int k) const;
  int getDegree() const { return _degree; }

  /// Counts, extremes and weight; with a positive weight also mean and population variance.
  void fill(NbcStatBasic &record) const;

  /// The same with geometric and harmonic means (when the minimum is positive) and, for a degree
  /// above 2, skewness and kurtosis (0 for a constant).
  void fill(NbcStatMono &record) const;

private:
  friend class NgaStatBlockSum;

  double _mean() const { return _weight > 0. ? _sum / _weight : 0.; }
  void _mergeMoments(double weight, double sum, double m2, double m3, double m4);
  void _mergeProducts(double weight, double sumX, double sumY, double coMoment);

  qint64 _nTotal = 0;
  qint64 _nDefined = 0;
  qint64 _nDefinedNoW = 0;
  double _min = NbbGlobal::D_BIG_POSITIVE;
  double _max = NbbGlobal::D_BIG_NEGATIVE;
  double _minNoW = NbbGlobal::D_BIG_POSITIVE;
  double _maxNoW = NbbGlobal::D_BIG_NEGATIVE;
  double _sumLog = 0.;
  double _sumInverse = 0.;
  double _weight = 0.;
  double _sum = 0.;
  double _m2 = 0.;  // weighted sums of the powers of v - mean
  double _m3 = 0.;
  double _m4 = 0.;
  double _sumY = 0.;  // of the other variable of the pairs
  double _coMoment = 0.;
  int _degree;
};
