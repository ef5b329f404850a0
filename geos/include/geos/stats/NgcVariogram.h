#pragma once

#include "geos/stats/NgcAPairwiseStat.h"
#include "geos/stats/NgmVariogramCloudParameters.h"
#include "geos/stats/NgmVariogramExpData.h"

#include <memory>

class NgmMultivariateStatistics;
class NgmVariogramExp;

/// Experimental variograms and covariances of points, buffer by buffer: all variables with all
/// cross statistics.
///
/// Formula:  those of NgcVariogramExp
/// Roles:    the variables; WEIGHT, optional (the weight of a pair is the product; a weight that is
///           undefined or not positive leaves the sample out); MASK, optional (1 leaves the sample
///           out, m in between multiplies the weight of its pairs by 1 - m); CODE when pairs are
///           filtered
/// Pairs:    go up along the axis of the largest extent, by sample numbers for equal coordinates. A
///           direction is not offered a pair that the direction before it took, when both are of
///           one group whose directions do not overlap; so skipped, it has not taken the pair, and
///           the direction behind it is offered the pair again.
/// Cost:     all pairs of samples within the largest distance along the sorted axis
///
/// The number of samples in the origin of covariances is that of the statistics.
class NgcVariogram : public NgcAPairwiseStat
{
public:
  /// Pairs kept by the codes of their samples.
  enum PairsFiltering { ALL_PAIRS = 0, SAME_CODE = 1, DIFFERENT_CODES = 2 };

  /// Of the variables of an input role.
  explicit NgcVariogram(const QString &roleV);
  ~NgcVariogram() override;

  void setVarioExp(const NgmVariogramExp &request);
  const NgmVariogramExp &getVarioExp() const;

  void setStatistics(const NgmMultivariateStatistics &statistics);
  const NgmMultivariateStatistics &getStatistics() const;

  void setPairsFiltering(PairsFiltering filtering) { _filtering = filtering; }
  PairsFiltering getPairsFiltering() const { return _filtering; }

  /// What to gather when the request asks for clouds.
  void setVariogramCloudParameters(const NgmVariogramCloudParameters &parameters)
  {
    _cloudParameters = parameters;
  }
  const NgmVariogramCloudParameters &getCloudParameters() const { return _cloudParameters; }

  /// The results of the last run, valid until the next one.
  const NgmVariogramExpData &getResults() const;

protected:
  void _addRuntimeConstraints() override;
  void _preProcessing() override;
  NgwAThread *_createComputingThread(NgwThreadPool *pool) override;
  void _postProcessing() override;

private:
  std::unique_ptr<NgmVariogramExp> _request;
  std::unique_ptr<NgmMultivariateStatistics> _statistics;
  NgmVariogramCloudParameters _cloudParameters;
  PairsFiltering _filtering = ALL_PAIRS;
  NgmVariogramExpData _results;
};
