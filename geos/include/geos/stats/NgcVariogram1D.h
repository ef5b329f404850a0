#pragma once

#include "geos/base/NgaOrderedSum.h"
#include "geos/lines/NgcALineCalculator.h"
#include "geos/stats/NgaVarioSum.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <memory>

/// Experimental variograms and cross-variograms along the lines of a data set (downhole): pairs of
/// samples of one line, by the distance along it.
///
/// Formula:  a pair (a, b), b behind a on the line, has the lag floor((s_b - s_a) / lag + 1/2): lag
///           k holds the distances [(k - 1/2) lag, (k + 1/2) lag). Pairs of lags 0 to nLags - 1
///           count. Positions need not ascend: a sample that lies back by more than half a lag
///           makes no pair.
/// Position: Nbd::Role::LINE_S, or the middle of LINE_S_FROM and LINE_S_TO for cores
/// Weights:  Nbd::Role::WEIGHT, optional; a sample with an undefined weight or one that is not
///           positive is left out, a pair weighs w_a w_b
/// Mask:     Nbd::Role::MASK, optional, boolean: a sample where it is true is left out
/// Results:  one direction, "Downhole", with the curves VARIOGRAM and PAIRWISE_RELATIVE_VARIOGRAM
/// Cost:     the pairs within the last lag on lines with ascending positions, else all pairs
class NgcVariogram1D : public NgcALineCalculator
{
public:
  NgcVariogram1D();
  ~NgcVariogram1D() override;

  void setLag(double lag) { _lag = lag; }
  double getLag() const { return _lag; }
  void setNLags(int nLags) { _nLags = nLags; }
  int getNLags() const { return _nLags; }

  /// As many lags as reach the distance.
  void setLagAndMaximumDistance(double lag, double maxDistance);

  /// Statistics of the variables, for the sill of the variograms; without them it stays undefined.
  void setStatistics(const NgmMultivariateStatistics &statistics);

  /// Number of variables bound to V.
  int getNVariables() const;

  /// Results of the last run, until the next one.
  const NgmVariogramExpData &getResults() const;
  NbdDataTable getTableOfResults(int i, int j) const;

  /// For the workers: the sums of the buffer that the calling thread took last, `sums` with one
  /// element per pair of variables and `stats` with one per variable. Both are left empty.
  /// Thread-safe.
  void saveStats(NgaVarioSumList &sums, NgaVarioSumList &stats);

protected:
  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
  void _postProcessing() override;

private:
  QString _buildDownholeDescription() const;
  void _setPseudoSills(NgaVarioSumList &stats);
  NgaVarioSumList _makeSums() const;
  NgaVarioSumList _makeStats() const;

  double _lag = 1.;
  int _nLags = 10;
  std::unique_ptr<NgmMultivariateStatistics> _statistics;
  NgaOrderedSum _partialSums;
  NgaOrderedSum _partialStats;
  QMutex _sumsMutex;  // guards the two above
  NgmVariogramExpData _results;
};
