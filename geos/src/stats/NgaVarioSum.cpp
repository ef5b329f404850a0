#include "geos/stats/NgaVarioSum.h"

#include "basic/error/NbeAssertion.h"

#include <cmath>

namespace {

constexpr double NULL_WEIGHT = 1e-30;
constexpr double NULL_SUM = 1e-30;

double deviation(double squareSum, double weight, double mean)
{
  const double variance = squareSum / weight - mean * mean;
  return squareSum > 0. && variance > 0. ? std::sqrt(variance) : 0.;
}

}  // namespace

NgaVarioSum::NgaVarioSum(int nLags) : _nPairs(nLags, 0)
{
  for (std::vector<double> &sums : _sums)
    sums.assign(nLags, 0.);
}

void NgaVarioSum::addPair(int lag, double d, double weight, double head1, double tail1,
                          double head2, double tail2)
{
  addCovariancePair(lag, d, weight, head1, tail2);
  const double g = (head1 - tail1) * (head2 - tail2);
  const double s = (tail1 + head1) * (tail2 + head2);
  _sums[TAIL_1][lag] += weight * tail1;
  _sums[HEAD_2][lag] += weight * head2;
  _sums[VARIOGRAM][lag] += 0.5 * weight * g;
  _sums[RODOGRAM][lag] += 0.5 * weight * std::sqrt(std::sqrt(std::fabs(g)));
  _sums[PAIRWISE][lag] += std::fabs(s) > NULL_SUM ? weight * (2. * g / s) : 0.;
  _sums[MADOGRAM][lag] += 0.5 * weight * std::sqrt(std::fabs(g));
}

void NgaVarioSum::addCovariancePair(int lag, double d, double weight, double head, double tail)
{
  ++_nPairs[lag];
  _sums[WEIGHT][lag] += weight;
  _sums[DISTANCE][lag] += d;
  _sums[HEAD_1][lag] += weight * head;
  _sums[TAIL_2][lag] += weight * tail;
  _sums[HEAD_SQUARE][lag] += weight * head * head;
  _sums[TAIL_SQUARE][lag] += weight * tail * tail;
  _sums[PRODUCT][lag] += weight * head * tail;
}

void NgaVarioSum::addRecords(const double *records, int stride)
{
  for (int lag = 0; lag < getNLags(); ++lag, records += stride) {
    for (int array = 0; array < N_ARRAYS; ++array)
      _sums[array][lag] += records[array];
    _nPairs[lag] += static_cast<long long>(records[N_ARRAYS]);
  }
}

void NgaVarioSum::normalize()
{
  for (int lag = 0; lag < getNLags(); ++lag) {
    const double weight = _sums[WEIGHT][lag];
    if (!(weight > NULL_WEIGHT))
      continue;
    for (const Array array :
         {HEAD_1, TAIL_1, HEAD_2, TAIL_2, VARIOGRAM, PRODUCT, RODOGRAM, PAIRWISE, MADOGRAM})
      _sums[array][lag] /= weight;
    double &head = _sums[HEAD_SQUARE][lag];
    double &tail = _sums[TAIL_SQUARE][lag];
    const double wholeWeight = std::trunc(weight);
    head = deviation(head, weight, _sums[HEAD_1][lag]);
    tail = wholeWeight > 0. ? deviation(tail, wholeWeight, _sums[TAIL_2][lag]) : 0.;
  }
}

void NgaVarioSum::doSum(const NgaIAdditive &other)
{
  const auto *sum = dynamic_cast<const NgaVarioSum *>(&other);
  if (!sum || sum->getNLags() != getNLags())
    NBE_FAIL(QStringLiteral("Sums of another size"));
  for (int lag = 0; lag < getNLags(); ++lag)
    _nPairs[lag] += sum->_nPairs[lag];
  for (int array = 0; array < N_ARRAYS; ++array) {
    for (int lag = 0; lag < getNLags(); ++lag)
      _sums[array][lag] += sum->_sums[array][lag];
  }
}

NgaIAdditive *NgaVarioSum::clone() const
{
  return new NgaVarioSum(*this);
}

void NgaVarioSumList::doSum(const NgaIAdditive &other)
{
  const auto *list = dynamic_cast<const NgaVarioSumList *>(&other);
  if (!list || list->getCount() != getCount() || list->_clouds.size() != _clouds.size())
    NBE_FAIL(QStringLiteral("Sums of another size"));
  for (int i = 0; i < getCount(); ++i)
    _sums[i].doSum(list->_sums[i]);
  for (std::size_t i = 0; i < _clouds.size(); ++i)
    _clouds[i].doSum(list->_clouds[i]);
}

NgaIAdditive *NgaVarioSumList::clone() const
{
  return new NgaVarioSumList(*this);
}
