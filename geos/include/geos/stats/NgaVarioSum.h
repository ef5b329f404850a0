#pragma once

#include "geos/base/NgaIAdditive.h"
#include "geos/stats/NgmVariogramCloud.h"

#include <vector>

/// Sums over the pairs of samples of each lag, from which the experimental variograms and
/// covariances of one pair of variables are made.
///
/// For the variables a (first) and b (second) of a pair whose vector goes from its tail i to its
/// head j: g = (a_j - a_i)(b_j - b_i), s = (a_i + a_j)(b_i + b_j), w the weight of the pair.
///
/// normalize() turns sums into means, where a lag has a weight. An array that no curve needs stays
/// 0.
class NgaVarioSum : public NgaIAdditive
{
public:
  enum Array {
    WEIGHT,       ///< w; stays a sum
    DISTANCE,     ///< d, whatever the weight, or -d against the direction; stays a sum
    HEAD_1,       ///< w a_j; then the mean
    TAIL_1,       ///< w a_i; then the mean
    HEAD_2,       ///< w b_j; then the mean
    TAIL_2,       ///< w b_i; then the mean
    HEAD_SQUARE,  ///< w a_j^2; then the standard deviation
    TAIL_SQUARE,  ///< w b_i^2; then the standard deviation
    VARIOGRAM,    ///< w g / 2; then the mean, as all below
    PRODUCT,      ///< w a_j b_i
    RODOGRAM,     ///< w |g|^(1/4) / 2
    PAIRWISE,     ///< w 2 g / s, 0 where s is
    MADOGRAM,     ///< w sqrt(|g|) / 2
    N_ARRAYS
  };

  explicit NgaVarioSum(int nLags = 0);

  int getNLags() const { return int(_nPairs.size()); }
  const long long *getNumberOfPairs() const { return _nPairs.data(); }
  const double *get(Array array) const { return _sums[array].data(); }

  /// Adds a pair to every array of a lag. `d` carries its sign.
  void addPair(int lag, double d, double weight, double head1, double tail1, double head2,
               double tail2);

  /// The same for a covariance, which needs the first variable at the head and the second at the
  /// tail only.
  void addCovariancePair(int lag, double d, double weight, double head, double tail);

  /// Adds partial sums, one record per lag of N_ARRAYS sums and behind them the number of pairs;
  /// `stride` numbers from one record to the next.
  void addRecords(const double *records, int stride);

  /// Sums become means, once all pairs are in. The deviation of the tail divides by the integer
  /// part of the weight.
  void normalize();

  void doSum(const NgaIAdditive &other) override;
  NgaIAdditive *clone() const override;

private:
  std::vector<long long> _nPairs;
  std::vector<double> _sums[N_ARRAYS];
};

/// A list of sums that are added one by one, and the clouds of their pairs when they are wanted:
/// as many clouds as sums, or none.
class NgaVarioSumList : public NgaIAdditive
{
public:
  void append(NgaVarioSum sum) { _sums.push_back(std::move(sum)); }
  int getCount() const { return int(_sums.size()); }
  NgaVarioSum &at(int i) { return _sums[i]; }
  const NgaVarioSum &at(int i) const { return _sums[i]; }

  /// Adds the cloud of the next sum.
  void appendCloud(NgmVariogramCloud cloud) { _clouds.push_back(std::move(cloud)); }
  bool hasClouds() const { return !_clouds.empty(); }
  NgmVariogramCloud &getCloud(int i) { return _clouds[i]; }
  const NgmVariogramCloud &getCloud(int i) const { return _clouds[i]; }

  void doSum(const NgaIAdditive &other) override;
  NgaIAdditive *clone() const override;

private:
  std::vector<NgaVarioSum> _sums;
  std::vector<NgmVariogramCloud> _clouds;
};
