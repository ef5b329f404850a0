#include "geos/stats/NgmVariogramCloud.h"

#include "basic/error/NbeAssertion.h"

NgmVariogramCloud::NgmVariogramCloud(int nLags, int nMaxUpper, int nMaxLower)
    : _nMaxUpper(nMaxUpper), _nMaxLower(nMaxLower)
{
  setNLags(nLags);
}

NgmVariogramCloud::~NgmVariogramCloud() = default;

void NgmVariogramCloud::setNLags(int nLags)
{
  _outliers.assign(nLags, NgmPairsOutliers(_nMaxUpper, _nMaxLower, _nMaxCalc));
}

void NgmVariogramCloud::setNMaxOutliers(int nMaxUpper, int nMaxLower, int nMaxCalc)
{
  _nMaxUpper = nMaxUpper;
  _nMaxLower = nMaxLower;
  _nMaxCalc = nMaxCalc;
  for (NgmPairsOutliers &outliers : _outliers)
    outliers.setNMaxOutliers(nMaxUpper, nMaxLower, nMaxCalc);
}

void NgmVariogramCloud::resizeAndInit(int nLags, int nx, int ny, double xmin, double xmax,
                                      double ymin, double ymax, bool withImage)
{
  _density = NgmVariogramCloudDensity();
  if (withImage)
    _density.initializeCloudDensity(nx, ny, xmin, xmax, ymin, ymax);
  setNLags(nLags);
}

void NgmVariogramCloud::addPair(int lag, const NgmPairsVariogramCloud &pair)
{
  _density.addPair(pair.getDistance(), pair.getValue());
  if (_nMaxUpper > 0)
    _outliers[lag].addPair(pair);
}

void NgmVariogramCloud::finishSorting()
{
  for (NgmPairsOutliers &outliers : _outliers)
    outliers.finishSorting();
}

int NgmVariogramCloud::getNOutliers() const
{
  std::size_t n = 0;
  for (const NgmPairsOutliers &outliers : _outliers)
    n += outliers.getUpperOutliers().size() + outliers.getLowerOutliers().size();
  return int(n);
}

void NgmVariogramCloud::doSum(const NgmVariogramCloud &other)
{
  if (other.getNLags() != getNLags())
    NBE_FAIL(QStringLiteral("the number of lag does not fit"));
  _density.sum(other._density);
  for (int lag = 0; lag < getNLags(); ++lag)
    _outliers[lag].sum(other._outliers[lag]);
}

void NgmVariogramCloud::doSum(const NgaIAdditive &other)
{
  const auto *cloud = dynamic_cast<const NgmVariogramCloud *>(&other);
  if (!cloud)
    NBE_FAIL(QStringLiteral("not a variogram cloud"));
  doSum(*cloud);
}
