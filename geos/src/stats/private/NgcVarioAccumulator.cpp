#include "stats/private/NgcVarioAccumulator.h"

#include "geos/stats/NgmVariogramExp.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double NULL_SUM = 1e-30;

double weightOf(const double *weights, int tail, int head)
{
  return weights ? weights[tail] * weights[head] : 1.;
}

}  // namespace

NgcVarioTerms::NgcVarioTerms(const NgmVariogramExp &request)
    : variogram(!request.getVarioCurveTypes().isEmpty()),
      gamma(request.hasVariogram()),
      madogram(request.hasMadogram()),
      rodogram(request.hasRodogram()),
      pairwise(request.hasPairwiseVariogram()),
      means(request.isVarioRegistered(NgmEVarioExp::EValue::NON_ERGODIC_RELATIVE_VARIOGRAM)),
      covariance(request.hasCovariance())
{
}

NgcVarioPairs::NgcVarioPairs(int capacity)
    : tail(capacity),
      head(capacity),
      distance(capacity),
      lagMin(capacity),
      lagMax(capacity),
      positive(capacity)
{
}

// Weight, distance, variogram and number of pairs of the most usual request. The four sums of a lag
// are independent chains of additions.
void NgcVarioAccumulator::_addGamma(const NgcVarioPairs &pairs, const double *a, const double *b,
                                    const double *weights)
{
  const int n = pairs.n;
  const int *tails = pairs.tail.data();
  const int *heads = pairs.head.data();
  const double *distances = pairs.distance.data();
  const int *lagMin = pairs.lagMin.data();
  const int *lagMax = pairs.lagMax.data();
  double *records = _records.data();
  for (int k = 0; k < n; ++k) {
    const int tail = tails[k];
    const int head = heads[k];
    const double g = (a[head] - a[tail]) * (b[head] - b[tail]);
    if (g != g)
      continue;
    const double weight = weightOf(weights, tail, head);
    const double d = distances[k];
    const int last = lagMax[k];
    for (int lag = lagMin[k]; lag <= last; ++lag) {
      double *record = records + std::size_t(lag) * STRIDE;
      record[N_PAIRS] += 1.;
      record[NgaVarioSum::WEIGHT] += weight;
      record[NgaVarioSum::DISTANCE] += d;
      record[NgaVarioSum::VARIOGRAM] += 0.5 * weight * g;
    }
  }
}

void NgcVarioAccumulator::addVariogram(const NgcVarioTerms &terms, const NgcVarioPairs &pairs,
                                       const double *a, const double *b, const double *weights)
{
  if (terms.isGammaOnly())
    return _addGamma(pairs, a, b, weights);
  for (int k = 0; k < pairs.n; ++k) {
    const int tail = pairs.tail[k];
    const int head = pairs.head[k];
    const double g = (a[head] - a[tail]) * (b[head] - b[tail]);
    if (g != g)
      continue;
    const double weight = weightOf(weights, tail, head);
    const double root = terms.madogram || terms.rodogram ? std::sqrt(std::fabs(g)) : 0.;
    const double fourthRoot = terms.rodogram ? std::sqrt(root) : 0.;
    const double s = terms.pairwise ? (a[tail] + a[head]) * (b[tail] + b[head]) : 0.;
    const double pairwise = std::fabs(s) > NULL_SUM ? weight * (2. * g / s) : 0.;
    for (int lag = pairs.lagMin[k]; lag <= pairs.lagMax[k]; ++lag) {
      double *record = &_records[std::size_t(lag) * STRIDE];
      record[N_PAIRS] += 1.;
      record[NgaVarioSum::WEIGHT] += weight;
      record[NgaVarioSum::DISTANCE] += pairs.distance[k];
      record[NgaVarioSum::VARIOGRAM] += 0.5 * weight * g;
      record[NgaVarioSum::MADOGRAM] += 0.5 * weight * root;
      record[NgaVarioSum::RODOGRAM] += 0.5 * weight * fourthRoot;
      record[NgaVarioSum::PAIRWISE] += pairwise;
      if (!terms.means)
        continue;
      record[NgaVarioSum::HEAD_1] += weight * a[head];
      record[NgaVarioSum::TAIL_1] += weight * a[tail];
      record[NgaVarioSum::HEAD_2] += weight * b[head];
      record[NgaVarioSum::TAIL_2] += weight * b[tail];
    }
  }
}

void NgcVarioAccumulator::_addHalf(int lagMin, int lagMax, double d, double weight, double head,
                                   double tail)
{
  const double product = head * tail;
  if (product != product)
    return;
  for (int lag = lagMin; lag <= lagMax; ++lag) {
    double *record = &_records[std::size_t(lag) * STRIDE];
    record[N_PAIRS] += 1.;
    record[NgaVarioSum::WEIGHT] += weight;
    record[NgaVarioSum::DISTANCE] += d;
    record[NgaVarioSum::HEAD_1] += weight * head;
    record[NgaVarioSum::TAIL_2] += weight * tail;
    record[NgaVarioSum::HEAD_SQUARE] += weight * head * head;
    record[NgaVarioSum::TAIL_SQUARE] += weight * tail * tail;
    record[NgaVarioSum::PRODUCT] += weight * product;
  }
}

void NgcVarioAccumulator::addCovariance(const NgcVarioPairs &pairs, const double *a,
                                        const double *b, const double *weights)
{
  const int origin = int(_records.size() / STRIDE) / 2;
  for (int k = 0; k < pairs.n; ++k) {
    int tail = pairs.tail[k];
    int head = pairs.head[k];
    if (!pairs.positive[k])
      std::swap(tail, head);
    const double weight = weightOf(weights, tail, head);
    const double d = pairs.distance[k];
    const int first = 1 + pairs.lagMin[k];
    const int last = 1 + pairs.lagMax[k];
    _addHalf(origin + first, origin + last, d, weight, a[head], b[tail]);
    _addHalf(origin - last, origin - first, -d, weight, a[tail], b[head]);
  }
}

void NgcVarioAccumulator::flushInto(NgaVarioSum &sum)
{
  sum.addRecords(_records.data(), STRIDE);
  std::fill(_records.begin(), _records.end(), 0.);
}
