#include "geos/stats/NgmPairsOutliers.h"

#include <algorithm>
#include <tuple>

namespace {

using Pairs = std::vector<NgmPairsVariogramCloud>;

/// Sorts by decreasing (increasing) value and cuts to n pairs.
void keepExtremes(Pairs &pairs, int n, bool upper)
{
  const auto key = [upper](const NgmPairsVariogramCloud &pair) {
    return std::make_tuple(upper ? -pair.getValue() : pair.getValue(), pair.getSampleNumber1(),
                           pair.getSampleNumber2());
  };
  const auto end = pairs.begin() + std::min(n, int(pairs.size()));
  std::partial_sort(pairs.begin(), end, pairs.end(),
                    [&key](const auto &a, const auto &b) { return key(a) < key(b); });
  pairs.erase(end, pairs.end());
}

}  // namespace

NgmPairsOutliers::NgmPairsOutliers(int nMaxUpper, int nMaxLower, int nMaxCalc)
    : _nMaxUpper(nMaxUpper), _nMaxLower(nMaxLower), _nMaxCalc(nMaxCalc)
{
}

NgmPairsOutliers::~NgmPairsOutliers() = default;

void NgmPairsOutliers::setNMaxOutliers(int nMaxUpper, int nMaxLower, int nMaxCalc)
{
  _nMaxUpper = nMaxUpper;
  _nMaxLower = nMaxLower;
  _nMaxCalc = nMaxCalc;
}

void NgmPairsOutliers::addPair(const NgmPairsVariogramCloud &pair)
{
  const double value = pair.getValue();
  ++_nValues;
  const double difference = value - _mean;
  _mean += difference / double(_nValues);
  _squares += difference * (value - _mean);
  _smallest = std::min(_smallest, value);
  _largest = std::max(_largest, value);
  _offerUpper(pair);
  _offerLower(pair);
}

void NgmPairsOutliers::_offerUpper(const NgmPairsVariogramCloud &pair)
{
  if (_nMaxUpper <= 0 || !(pair.getValue() > _upperThreshold.getValue()))
    return;
  _upper.push_back(pair);
  if (int(_upper.size()) > std::max(_nMaxCalc, _nMaxUpper)) {
    keepExtremes(_upper, _nMaxUpper, true);
    _upperThreshold = _upper.back();
  }
}

void NgmPairsOutliers::_offerLower(const NgmPairsVariogramCloud &pair)
{
  if (_nMaxLower <= 0 || !(pair.getValue() < _lowerThreshold.getValue()))
    return;
  _lower.push_back(pair);
  if (int(_lower.size()) > std::max(_nMaxCalc, _nMaxLower)) {
    keepExtremes(_lower, _nMaxLower, false);
    _lowerThreshold = _lower.back();
  }
}

void NgmPairsOutliers::finishSorting()
{
  keepExtremes(_upper, _nMaxUpper, true);
  keepExtremes(_lower, _nMaxLower, false);
  setNTotal(_nValues);
  setNDefined(_nValues);
  setWeight(double(_nValues));
  if (_nValues == 0)
    return;
  setMinimum(_smallest);
  setMaximum(_largest);
  setMean(_mean);
  setVariance(_squares / double(_nValues));
}

void NgmPairsOutliers::sum(const NgmPairsOutliers &other)
{
  if (other._nValues == 0)
    return;
  // Both means and sums of squares in one (Chan, Golub and LeVeque 1979).
  const double n = double(_nValues + other._nValues);
  const double difference = other._mean - _mean;
  _squares +=
      other._squares + difference * difference * double(_nValues) * double(other._nValues) / n;
  _mean += difference * double(other._nValues) / n;
  _nValues += other._nValues;
  _smallest = std::min(_smallest, other._smallest);
  _largest = std::max(_largest, other._largest);
  for (const NgmPairsVariogramCloud &pair : other._upper)
    _offerUpper(pair);
  for (const NgmPairsVariogramCloud &pair : other._lower)
    _offerLower(pair);
}

QString NgmPairsOutliers::debug(int level) const
{
  QString text = NbcStatBasic::debug(level);
  for (const Pairs *pairs : {&_upper, &_lower}) {
    for (const NgmPairsVariogramCloud &pair : *pairs)
      text += pair.debug(level + 1);
  }
  return text;
}
