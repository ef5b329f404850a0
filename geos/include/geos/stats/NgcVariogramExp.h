#pragma once

#include "geos/base/NgcACalculatorSequential.h"

#include <memory>

class NgcVariogramExpPrivate;
class NgmMultivariateStatistics;
class NgmVariogramCloudParameters;
class NgmVariogramExp;
class NgmVariogramExpData;

/// Experimental variograms and covariances of one or several variables from all pairs of samples of
/// a data set (Nbd::Dataset::INOUT), which is only read.
///
/// Formula:  variogram = sum w (a_j - a_i)(b_j - b_i) / (2 sum w) over the pairs (i, j) of a lag;
///           the others from the same kind of sums, see NgaVarioSum. A pair goes from its tail i to
///           its head j, along the direction; without direction by ascending X. On the positive
///           side of a covariance the first variable is at the head and the second at the tail.
/// Roles:    V, as many as the request has variables; WEIGHT, optional (the weight of a pair is the
///           product; a weight that is undefined or not positive leaves the sample out); CODE when
///           pairs are filtered; GAUSSIAN, as many as V, with Gaussian statistics
/// Missing:  a variogram counts the pairs where all values that it needs are defined, a covariance
///           every half-pair whose two values are
/// Requires: the request and the statistics of the variables, which give global means, deviations
///           and correlations
/// Cost:     the pairs within the largest distance and few others; 200 bytes per sample
/// Source:   [Journel and Huijbregts 1978]; [Deutsch and Journel 1998] for the relative ones
class NgcVariogramExp : public NgcACalculatorSequential
{
public:
  /// Pairs kept by the codes of their samples.
  enum PairsFiltering { ALL_PAIRS = 0, SAME_CODE = 1, DIFFERENT_CODES = 2 };

  NgcVariogramExp();
  ~NgcVariogramExp() override;

  void setVarioExp(const NgmVariogramExp &request);
  /// The request; a programming error when it was not set.
  const NgmVariogramExp &getVarioExp() const;

  void setPairsFiltering(PairsFiltering filtering);
  void setStatistics(const NgmMultivariateStatistics &statistics);

  /// Computes every curve a second time on the variables of the role GAUSSIAN.
  void setStatisticsGaussian(const NgmMultivariateStatistics &statistics);

  /// What to gather when the request asks for clouds.
  void setVariogramCloudParameters(const NgmVariogramCloudParameters &parameters);
  const NgmVariogramCloudParameters &getCloudParameters() const;
  /// Whether the request asks for clouds.
  bool computeCloud() const;

  /// Keeps n samples drawn at random when there are more. Off by default.
  void useDecimation(bool use, int n = 1000000);

  /// Samples per block of the search, 500 by default: finer blocks cost more bookkeeping, coarser
  /// ones more distances.
  void setBufferMaxNbSamples(int n);

  /// Of the draws of decimation and pseudo-sills; 165426 by default.
  void setSeed(unsigned long long seed);

  /// Also pairs of different variables, by default.
  void setComputeCross(bool cross);
  bool computeCross() const;

  /// The results of the last run, valid until the next one.
  const NgmVariogramExpData &getResults() const;
  const NgmVariogramExpData &getResultsGaussian() const;

protected:
  void _addRuntimeConstraints() override;
  void _processing(NbdAData &buffer) override;
  void _postProcessing() override;

private:
  friend class NgcVariogramExpPrivate;

  std::unique_ptr<NgcVariogramExpPrivate> _d;
};
