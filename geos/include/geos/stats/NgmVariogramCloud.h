#pragma once

#include "geos/base/NgaIAdditive.h"
#include "geos/stats/NgmPairsOutliers.h"
#include "geos/stats/NgmVariogramCloudDensity.h"

#include <vector>

/// The cloud of the pairs of samples behind one experimental curve: an image of all pairs, and the
/// most extreme pairs of each lag.
///
/// The pairs of a lag are gathered only when upper outliers are kept, lower ones included.
class NgmVariogramCloud : public NgaIAdditive
{
public:
  explicit NgmVariogramCloud(int nLags = 0, int nMaxUpper = 0, int nMaxLower = 0);
  ~NgmVariogramCloud() override;

  int getNLags() const { return int(_outliers.size()); }
  /// Gives every lag a new record.
  void setNLags(int nLags);

  /// For every lag: the pairs kept at both ends, and how many are gathered on the way.
  void setNMaxOutliers(int nMaxUpper, int nMaxLower, int nMaxCalc);

  /// Starts again without pairs, with this many lags and this image; without image when
  /// `withImage` is not set.
  void resizeAndInit(int nLags, int nx, int ny, double xmin, double xmax, double ymin, double ymax,
                     bool withImage);

  void addPair(int lag, const NgmPairsVariogramCloud &pair);

  /// To be called after the last pair: sorts the outliers of all lags.
  void finishSorting();

  /// The outliers of all lags together.
  int getNOutliers() const;
  const NgmPairsOutliers &getOutliers(int lag) const { return _outliers.at(lag); }
  const NgmVariogramCloudDensity &getDensity() const { return _density; }

  void doSum(const NgmVariogramCloud &other);
  void doSum(const NgaIAdditive &other) override;
  NgmVariogramCloud *clone() const override { return new NgmVariogramCloud(*this); }

private:
  int _nMaxUpper;
  int _nMaxLower;
  int _nMaxCalc = 20;
  NgmVariogramCloudDensity _density;
  std::vector<NgmPairsOutliers> _outliers;
};
