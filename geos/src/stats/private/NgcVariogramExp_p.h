#pragma once

#include "geos/stats/NgaVarioSum.h"
#include "geos/stats/NgcVariogramExp.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramCloudParameters.h"
#include "geos/stats/NgmVariogramExp.h"
#include "stats/private/NgcVarioSamples.h"
#include "stats/private/NgcVarioSearch.h"

#include <memory>
#include <vector>

class NbdAData;

/// The engine of NgcVariogramExp.
class NgcVariogramExpPrivate
{
public:
  /// Directions searched together: the regular ones, and each of the others alone.
  struct Group
  {
    std::vector<int> directions;
    NbgRotation frame;
    int sortingAxis;  // of the frame
    NgcVarioBlocks::Bands bands;
  };

  explicit NgcVariogramExpPrivate(NgcVariogramExp &calculator) : _calculator(calculator) {}

  void check() const;
  void run(NbdAData &buffer);
  bool hasRun() const { return _hasRun; }
  void forgetRun() { _hasRun = false; }

  std::unique_ptr<NgmVariogramExp> request;
  std::unique_ptr<NgmMultivariateStatistics> statistics;
  std::unique_ptr<NgmMultivariateStatistics> statisticsGaussian;
  NgmVariogramCloudParameters cloudParameters;
  NgcVariogramExp::PairsFiltering filtering = NgcVariogramExp::ALL_PAIRS;
  bool useDecimation = false;
  int nDecimated = 1000000;
  int bufferSize = 500;
  unsigned long long seed = 165426;
  bool cross = true;
  NgmVariogramExpData results;
  NgmVariogramExpData resultsGaussian;

private:
  NgcVarioSamples _readSamples(NbdAData &buffer) const;
  void _decimate(NgcVarioSamples &samples) const;
  NgcVarioTask _makeTask() const;
  bool _needsPseudoSills() const;
  std::vector<int> _pseudoSillSubset(int nSamples) const;
  void _processPseudoSills(const NgcVarioSamples &samples);
  void _processPseudoSillsOfPair(const NgcVarioSamples &subset, int set, int i, int j,
                                 NgaVarioSum &vario, NgaVarioSum &cova) const;
  std::vector<Group> _getDirectionGroups(const NgcVarioSamples &samples) const;
  void _processDirectionGroup(const NgcVarioSamples &samples, const Group &group, qint64 progress);
  void _fill(const Group &group, const NgaVarioSumList &sums, int set);
  NgmVariogramExpData &_results(int set) { return set == 0 ? results : resultsGaussian; }
  const NgmMultivariateStatistics &_statistics(int set) const
  {
    return set == 0 ? *statistics : *statisticsGaussian;
  }

  NgcVariogramExp &_calculator;
  int _nSamples = 0;
  bool _hasRun = false;
};
