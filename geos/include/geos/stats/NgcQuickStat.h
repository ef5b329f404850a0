#pragma once

#include "geos/stats/NgcAStat.h"

#include <memory>

class NgmMultivariateStatistics;

/// Statistics of the variables of one role of a data set, in one parallel pass: univariate, and on
/// request bivariate with the correlation matrix.
///
/// Formula:  mean = sum w v / sum w; variance = sum w v^2 / sum w - mean^2 (population variance)
/// Weights:  Nbd::Role::WEIGHT, optional; a weight that is undefined or not positive leaves the
///           sample out of the weighted results
/// Mask:     Nbd::Role::MASK, optional; a sample counts where it is true (false when inverted)
/// Cost:     O(n) per sample for n variables, O(n^2) with bivariate statistics
class NgcQuickStat : public NgcAStat
{
public:
  explicit NgcQuickStat(const QString &roleV);
  ~NgcQuickStat() override;

  /// Also statistics of pairs of variables and correlations.
  void setBivariateStatFlag(bool bivariate) { _bivariateStat = bivariate; }

  /// Also skewness and kurtosis.
  void setFullStatFlag(bool full) { _fullStat = full; }

  void setInvertMaskFlag(bool invert) { _invertMask = invert; }

  /// The result of the last run, valid until the next one.
  NgmMultivariateStatistics &getMultivariateStatistics() const;

protected:
  void _preProcessing() override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
  void _postProcessing() override;

private:
  class Worker;

  int _getDegree() const { return _fullStat ? 4 : 2; }

  std::unique_ptr<NgmMultivariateStatistics> _result;
  bool _bivariateStat = false;
  bool _fullStat = false;
  bool _invertMask = false;
};
