#include "geos/base/NgaStatSum.h"

#include "base/private/NgaStatBlockSum.h"
#include "basic/calc/NbcStatMono.h"
#include "basic/error/NbeAssertion.h"

#include <algorithm>
#include <cmath>

namespace {

double definedOr(double value, double initial)
{
  return value == initial ? NbbGlobal::D_FFFF : value;
}

}  // namespace

void NgaStatSum::addValue(double value)
{
  addValue(value, 1.);
}

void NgaStatSum::addValue(double value, double weight)
{
  ++_nTotal;
  if (!NbbGlobal::isDefined(value))
    return;
  ++_nDefinedNoW;
  _minNoW = std::min(_minNoW, value);
  _maxNoW = std::max(_maxNoW, value);
  if (!NbbGlobal::isDefined(weight) || weight <= 0.)
    return;
  ++_nDefined;
  _min = std::min(_min, value);
  _max = std::max(_max, value);
  double term = weight;
  for (int k = 0; k <= _degree; ++k, term *= value)
    _moments[k] += term;
  if (value > 0.) {
    _sumLog += weight * std::log(value);
    _sumInverse += weight / value;
  }
}

void NgaStatSum::addPair(double x, double y)
{
  addPair(x, y, 1.);
}

void NgaStatSum::addPair(double x, double y, double weight)
{
  if (!NbbGlobal::isDefined(x) || !NbbGlobal::isDefined(y)) {
    ++_nTotal;
    return;
  }
  addValue(x, weight);
  if (NbbGlobal::isDefined(weight) && weight > 0.)
    _sumXY += x * weight * y;
}

void NgaStatSum::addValues(int n, const double *values, const double *weights)
{
  for (int first = 0; first < n; first += NgaStatBlockSum::BLOCK) {
    const int length = std::min(NgaStatBlockSum::BLOCK, n - first);
    if (weights)
      NgaStatBlockSum::addWeighted(*this, length, values + first, weights + first);
    else
      NgaStatBlockSum::add(*this, length, values + first);
  }
}

void NgaStatSum::addPairs(NgaStatSum &xy, NgaStatSum &yx, int n, const double *x, const double *y,
                          const double *weights)
{
  for (int first = 0; first < n; first += NgaStatBlockSum::BLOCK) {
    const int length = std::min(NgaStatBlockSum::BLOCK, n - first);
    NgaStatBlockSum::addPairs(xy, yx, length, x + first, y + first,
                              weights ? weights + first : nullptr);
  }
}

void NgaStatSum::doSum(const NgaIAdditive &other)
{
  const auto *sum = dynamic_cast<const NgaStatSum *>(&other);
  if (!sum || sum->_degree != _degree)
    NBE_FAIL(QStringLiteral("Objects don't have the same degree"));
  _nTotal += sum->_nTotal;
  _nDefined += sum->_nDefined;
  _nDefinedNoW += sum->_nDefinedNoW;
  _min = std::min(_min, sum->_min);
  _max = std::max(_max, sum->_max);
  _minNoW = std::min(_minNoW, sum->_minNoW);
  _maxNoW = std::max(_maxNoW, sum->_maxNoW);
  _sumXY += sum->_sumXY;
  _sumLog += sum->_sumLog;
  _sumInverse += sum->_sumInverse;
  for (int k = 0; k <= _degree; ++k)
    _moments[k] += sum->_moments[k];
}

void NgaStatSum::fill(NbcStatBasic &record) const
{
  record.setNTotal(_nTotal);
  record.setNDefined(_nDefinedNoW, _nDefined);
  record.setMinimum(definedOr(_minNoW, NbbGlobal::D_BIG_POSITIVE),
                    definedOr(_min, NbbGlobal::D_BIG_POSITIVE));
  record.setMaximum(definedOr(_maxNoW, NbbGlobal::D_BIG_NEGATIVE),
                    definedOr(_max, NbbGlobal::D_BIG_NEGATIVE));
  const double weight = _moments[0];
  record.setWeight(weight);
  if (weight <= 0.)
    return;
  // Rounding in the moments does not show in the statistics of a constant.
  const bool isConstant = _min == _max;
  const double mean = isConstant ? _min : _moments[1] / weight;
  record.setMean(mean);
  if (_degree < 2)
    return;
  record.setVariance(isConstant ? 0. : std::max(0., _moments[2] / weight - mean * mean));
}

void NgaStatSum::fill(NbcStatMono &record) const
{
  fill(static_cast<NbcStatBasic &>(record));
  const double weight = _moments[0];
  if (weight <= 0.)
    return;

  const bool isPositive = _min > 0.;
  record.setGeometricMean(isPositive ? std::exp(_sumLog / weight) : NbbGlobal::D_FFFF);
  record.setHarmonicMean(isPositive && _sumInverse != 0. ? weight / _sumInverse
                                                         : NbbGlobal::D_FFFF);
  if (_degree <= 2)
    return;

  const double sigma = record.getStandardDeviation();
  if (sigma <= 0.) {
    record.setSkewness(0.);
    record.setKurtosis(0.);
    return;
  }
  const double mean = record.getMean();
  const double mean2 = mean * mean;
  const double raw2 = record.getVariance() + mean2;
  const double raw3 = _moments[3] / weight;
  const double raw4 = _moments[4] / weight;
  const double sigma3 = sigma * sigma * sigma;
  record.setSkewness((2. * mean2 * mean - 3. * mean * raw2 + raw3) / sigma3);
  record.setKurtosis((6. * mean2 * raw2 - 4. * mean * raw3 - 3. * mean2 * mean2 + raw4) /
                     (sigma3 * sigma));
}

QString NgaStatSum::debug(int level) const
{
  NbcStatMono record;
  fill(record);
  return record.debug(level);
}
