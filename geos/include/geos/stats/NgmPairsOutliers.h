#pragma once

#include "basic/calc/NbcStatBasic.h"
#include "geos/stats/NgmPairsVariogramCloud.h"

#include <vector>

/// The pairs of the largest and of the smallest values of a lag, and the statistics of all values
/// that were offered.
///
/// Pairs are gathered until a list holds more than a number of them; then the extreme ones are kept
/// and the last of them becomes a threshold for those that follow. Equal values are kept in order
/// of sample numbers, but those equal to a threshold when they arrive are not.
class NgmPairsOutliers : public NbcStatBasic
{
public:
  /// How many pairs to keep at both ends; a list is compacted when it holds more than `nMaxCalc`
  /// (and more than are to be kept).
  explicit NgmPairsOutliers(int nMaxUpper = 0, int nMaxLower = 0, int nMaxCalc = 20);
  ~NgmPairsOutliers() override;
  NgmPairsOutliers(const NgmPairsOutliers &) = default;
  NgmPairsOutliers &operator=(const NgmPairsOutliers &) = default;

  void setNMaxOutliers(int nMaxUpper, int nMaxLower, int nMaxCalc);
  int getNMaxUpper() const { return _nMaxUpper; }
  int getNMaxLower() const { return _nMaxLower; }
  int getNMaxCalc() const { return _nMaxCalc; }

  void addPair(const NgmPairsVariogramCloud &pair);

  /// Sorts both lists, the most extreme value first, and cuts them to what is kept. The statistics
  /// are valid afterwards.
  void finishSorting();

  const std::vector<NgmPairsVariogramCloud> &getUpperOutliers() const { return _upper; }
  const std::vector<NgmPairsVariogramCloud> &getLowerOutliers() const { return _lower; }
  /// The pairs beyond which a value has to be.
  const NgmPairsVariogramCloud &getUpperThreshold() const { return _upperThreshold; }
  const NgmPairsVariogramCloud &getLowerThreshold() const { return _lowerThreshold; }

  /// Adds the pairs and statistics of `other`.
  void sum(const NgmPairsOutliers &other);

  QString debug(int level) const override;

private:
  void _offerUpper(const NgmPairsVariogramCloud &pair);
  void _offerLower(const NgmPairsVariogramCloud &pair);

  std::vector<NgmPairsVariogramCloud> _upper;
  std::vector<NgmPairsVariogramCloud> _lower;
  NgmPairsVariogramCloud _upperThreshold{NbbGlobal::D_BIG_NEGATIVE, 0., 0, 0};
  NgmPairsVariogramCloud _lowerThreshold{NbbGlobal::D_BIG_POSITIVE, 0., 0, 0};
  int _nMaxUpper;
  int _nMaxLower;
  int _nMaxCalc;
  qint64 _nValues = 0;
  double _mean = 0.;
  double _squares = 0.;  // of the differences to the mean
  double _smallest = NbbGlobal::D_BIG_POSITIVE;
  double _largest = NbbGlobal::D_BIG_NEGATIVE;
};
