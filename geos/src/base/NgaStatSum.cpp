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
  _mergeMoments(weight, weight * value, 0., 0., 0.);
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
  if (NbbGlobal::isDefined(weight) && weight > 0.)
    _mergeProducts(weight, weight * x, weight * y, 0.);
  addValue(x, weight);
}

void NgaStatSum::addValues(int n, const double *values, const double *weights)
{
  for (int first = 0; first < n; first += NgaStatBlockSum::BLOCK) {
    const int length = std::min(NgaStatBlockSum::BLOCK, n - first);
    NgaStatBlockSum::add(*this, length, values + first, weights ? weights + first : nullptr);
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
  _mergeProducts(sum->_weight, sum->_sum, sum->_sumY, sum->_coMoment);
  _mergeMoments(sum->_weight, sum->_sum, sum->_m2, sum->_m3, sum->_m4);
  _nTotal += sum->_nTotal;
  _nDefined += sum->_nDefined;
  _nDefinedNoW += sum->_nDefinedNoW;
  _min = std::min(_min, sum->_min);
  _max = std::max(_max, sum->_max);
  _minNoW = std::min(_minNoW, sum->_minNoW);
  _maxNoW = std::max(_maxNoW, sum->_maxNoW);
  _sumLog += sum->_sumLog;
  _sumInverse += sum->_sumInverse;
}

double NgaStatSum::getSumXY() const
{
  return _weight > 0. ? _coMoment + _sum * _sumY / _weight : 0.;
}

double NgaStatSum::getMoment(int k) const
{
  const double mean = _mean();
  const double mean2 = mean * mean;
  switch (k) {
    case 0:
      return _weight;
    case 1:
      return _sum;
    case 2:
      return _m2 + _sum * mean;
    case 3:
      return _m3 + 3. * mean * _m2 + _sum * mean2;
    default:
      return _m4 + 4. * mean * _m3 + 6. * mean2 * _m2 + _sum * mean2 * mean;
  }
}

void NgaStatSum::_mergeMoments(double weight, double sum, double m2, double m3, double m4)
{
  if (weight <= 0.)
    return;
  const double a = _weight;
  const double b = weight;
  const double total = a + b;
  const double shift = sum / b - _mean();
  if (a > 0. && _degree > 1) {
    const double d = shift / total;
    const double d2 = shift * d;
    if (_degree > 2) {
      _m4 += m4 + d2 * d * d * a * b * (a * a - a * b + b * b) +
             6. * d * d * (a * a * m2 + b * b * _m2) + 4. * d * (a * m3 - b * _m3);
      _m3 += m3 + d2 * d * a * b * (a - b) + 3. * d * (a * m2 - b * _m2);
    }
    _m2 += m2 + d2 * a * b;
  } else {
    _m2 = m2;
    _m3 = m3;
    _m4 = m4;
  }
  _weight = total;
  _sum += sum;
}

/// To be called before the moments are merged: it needs the mean as it was.
void NgaStatSum::_mergeProducts(double weight, double sumX, double sumY, double coMoment)
{
  if (weight <= 0.)
    return;
  _coMoment += coMoment;
  if (_weight > 0.)
    _coMoment += (sumX / weight - _mean()) * (sumY / weight - _sumY / _weight) *
                 (_weight * (weight / (_weight + weight)));
  _sumY += sumY;
}

void NgaStatSum::fill(NbcStatBasic &record) const
{
  record.setNTotal(_nTotal);
  record.setNDefined(_nDefinedNoW, _nDefined);
  record.setMinimum(definedOr(_minNoW, NbbGlobal::D_BIG_POSITIVE),
                    definedOr(_min, NbbGlobal::D_BIG_POSITIVE));
  record.setMaximum(definedOr(_maxNoW, NbbGlobal::D_BIG_NEGATIVE),
                    definedOr(_max, NbbGlobal::D_BIG_NEGATIVE));
  record.setWeight(_weight);
  if (_weight <= 0.)
    return;
  // Rounding in the sums does not show in the statistics of a constant.
  const bool isConstant = _min == _max;
  record.setMean(isConstant ? _min : _mean());
  if (_degree < 2)
    return;
  record.setVariance(isConstant ? 0. : _m2 / _weight);
}

void NgaStatSum::fill(NbcStatMono &record) const
{
  fill(static_cast<NbcStatBasic &>(record));
  if (_weight <= 0.)
    return;

  const bool isPositive = _min > 0.;
  record.setGeometricMean(isPositive ? std::exp(_sumLog / _weight) : NbbGlobal::D_FFFF);
  record.setHarmonicMean(isPositive && _sumInverse != 0. ? _weight / _sumInverse
                                                         : NbbGlobal::D_FFFF);
  if (_degree <= 2)
    return;

  const double sigma = record.getStandardDeviation();
  if (sigma <= 0.) {
    record.setSkewness(0.);
    record.setKurtosis(0.);
    return;
  }
  const double variance = record.getVariance();
  record.setSkewness(_m3 / _weight / (variance * sigma));
  record.setKurtosis(_m4 / _weight / (variance * variance));
}

QString NgaStatSum::debug(int level) const
{
  NbcStatMono record;
  fill(record);
  return record.debug(level);
}
