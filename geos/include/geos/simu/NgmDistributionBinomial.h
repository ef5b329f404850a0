#pragma once

#include "geos/simu/NgmDistributionGaussian.h"

/// Counts in the manner of a binomial law of `index` trials with probability `param`.
///
/// With p' = max(param, 1 - param) and v' = p' (1 - p'):
/// - index <= 20: u runs through the sums of binom(index, k) p'^index v'^k; the count starts at 1,
///   and it is reversed when param > 0.5;
/// - index > 20: normal approximation of mean index p' and variance index v', cut to 0 .. index,
///   and reversed when param < 0.5.
/// So the branch up to 20 does not yield the binomial law; both rules are kept as they stand for
/// the sake of existing results.
class NgmDistributionBinomial final : public NbbCloneable<NgmDistributionBinomial, NgmADistribution>
{
public:
  explicit NgmDistributionBinomial(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionBinomial(qint64 index, double param, quint64 seed, tSize size = DEFAULT_SIZE,
                          bool trace = false);

  /// 0 when the index is not positive.
  qint64 nextI() override;
  double getLowerBound() const override { return 0.; }
  double getUpperBound() const override { return double(_index); }
  bool givesInteger() const override { return true; }
  bool hasCdf() const override { return false; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  qint64 _nextFromTable();
  qint64 _nextFromGaussian();

  qint64 _index = 40;
  double _param = 0.5;
  NgmDistributionUniformD _uniform;
  NgmDistributionGaussian _gaussian;
};
