#include "stats/private/NgcVariogramCurves.h"

#include "basic/base/NbbGlobal.h"
#include "geos/stats/NgaVarioSum.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"
#include "stats/private/NgcVarioClouds.h"
#include "stats/private/NgcVarioSearch.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

using Globals = NgcVariogramCurves::Globals;
using Vario = NgmEVarioExp::EValue;
using Cova = NgmECovaExp::EValue;

constexpr double NOTHING = 1e-30;

bool isNull(double value)
{
  return std::fabs(value) < NOTHING;
}

bool hasWeight(const NgaVarioSum &sum, int lag)
{
  return sum.get(NgaVarioSum::WEIGHT)[lag] > NOTHING;
}

/// f(lag) for the lags with weight, 0 elsewhere.
template <class Function>
std::vector<double> perLag(const NgaVarioSum &sum, Function f)
{
  std::vector<double> values(sum.getNLags(), 0.);
  for (int lag = 0; lag < sum.getNLags(); ++lag) {
    if (hasWeight(sum, lag))
      values[lag] = f(lag);
  }
  return values;
}

std::vector<double> meansOf(const NgaVarioSum &sum, NgaVarioSum::Array array)
{
  return perLag(sum, [&](int lag) { return sum.get(array)[lag]; });
}

bool areDefined(std::initializer_list<double> values)
{
  for (const double value : values) {
    if (!NbbGlobal::isDefined(value))
      return false;
  }
  return true;
}

double originValue(Cova curve, const Globals &g)
{
  const bool isCorrelogram = curve == Cova::CORRELOGRAM || curve == Cova::NON_ERGODIC_CORRELOGRAM;
  const bool needsMeans =
      curve == Cova::NON_CENTERED_COVARIANCE || curve == Cova::TRANSITIVE_COVARIOGRAM;
  if (curve == Cova::ODD_PART_COVARIANCE || !areDefined({g.rho}))
    return 0.;
  if (isCorrelogram)
    return g.rho;
  if (!areDefined({g.deviation1, g.deviation2}))
    return 0.;
  const double covariance = g.rho * g.deviation1 * g.deviation2;
  if (!needsMeans)
    return covariance;
  if (!areDefined({g.mean1, g.mean2}))
    return 0.;
  const double nonCentred = covariance + g.mean1 * g.mean2;
  return curve == Cova::TRANSITIVE_COVARIOGRAM ? nonCentred * g.nSamples : nonCentred;
}

/// Replaces both sides by half their difference (odd) or by half their sum (even).
void splitSides(std::vector<double> &values, bool odd)
{
  const int n = int(values.size()) / 2;
  for (int k = 1; k <= n; ++k) {
    double &positive = values[n + k];
    double &negative = values[n - k];
    const double half = odd ? (positive - negative) / 2. : (negative + positive) / 2.;
    positive = half;
    negative = odd ? -half : half;
  }
}

std::vector<double> meanDistances(const NgaVarioSum &sum)
{
  return perLag(sum, [&](int lag) {
    return sum.get(NgaVarioSum::DISTANCE)[lag] / sum.get(NgaVarioSum::WEIGHT)[lag];
  });
}

}  // namespace

Globals NgcVariogramCurves::globalsOf(const NgmMultivariateStatistics &statistics, int i, int j,
                                      int nSamples)
{
  const NbcStatMono &first = statistics.getConstUnivariateStats(i);
  const NbcStatMono &second = statistics.getConstUnivariateStats(j);
  return {first.getMean(),
          second.getMean(),
          first.getStandardDeviation(),
          second.getStandardDeviation(),
          i == j ? 1. : statistics.getRho(i, j),
          double(nSamples)};
}

// Variograms.

std::vector<double> NgcVariogramCurves::_calculateVariogram(const NgaVarioSum &sum)
{
  return meansOf(sum, NgaVarioSum::VARIOGRAM);
}

std::vector<double> NgcVariogramCurves::_calculateMadogram(const NgaVarioSum &sum)
{
  return meansOf(sum, NgaVarioSum::MADOGRAM);
}

std::vector<double> NgcVariogramCurves::_calculateRodogram(const NgaVarioSum &sum)
{
  return meansOf(sum, NgaVarioSum::RODOGRAM);
}

std::vector<double> NgcVariogramCurves::_calculatePairwiseRelVario(const NgaVarioSum &sum)
{
  return meansOf(sum, NgaVarioSum::PAIRWISE);
}

std::vector<double> NgcVariogramCurves::_calculateRelVario(const NgaVarioSum &sum,
                                                           const Globals &globals)
{
  const bool isPossible = areDefined({globals.mean1, globals.mean2}) && !isNull(globals.mean1) &&
                          !isNull(globals.mean2);
  const double *gamma = sum.get(NgaVarioSum::VARIOGRAM);
  return perLag(
      sum, [&](int lag) { return isPossible ? gamma[lag] / (globals.mean1 * globals.mean2) : 0.; });
}

std::vector<double> NgcVariogramCurves::_calculateNonErgodicRelVario(const NgaVarioSum &sum)
{
  return perLag(sum, [&](int lag) {
    const double head1 = sum.get(NgaVarioSum::HEAD_1)[lag];
    const double tail2 = sum.get(NgaVarioSum::TAIL_2)[lag];
    const double divisor = (head1 + sum.get(NgaVarioSum::TAIL_1)[lag]) *
                           (sum.get(NgaVarioSum::HEAD_2)[lag] + tail2) / 4.;
    if (isNull(head1) || isNull(tail2) || divisor == 0.)
      return 0.;
    return sum.get(NgaVarioSum::VARIOGRAM)[lag] / divisor;
  });
}

std::vector<double> NgcVariogramCurves::_calculateCrossOverSimpleVario(const NgaVarioSum &sum,
                                                                       const NgaVarioSum &simple1)
{
  const double *gamma = sum.get(NgaVarioSum::VARIOGRAM);
  const double *gamma1 = simple1.get(NgaVarioSum::VARIOGRAM);
  return perLag(sum,
                [&](int lag) { return gamma1[lag] < NOTHING ? 0. : gamma[lag] / gamma1[lag]; });
}

std::vector<double> NgcVariogramCurves::_calculateCrossOverSqrtSimpleVario(
    const NgaVarioSum &sum, const NgaVarioSum &simple1, const NgaVarioSum &simple2)
{
  return perLag(sum, [&](int lag) {
    const double product =
        simple1.get(NgaVarioSum::VARIOGRAM)[lag] * simple2.get(NgaVarioSum::VARIOGRAM)[lag];
    return product > 0. ? sum.get(NgaVarioSum::VARIOGRAM)[lag] / std::sqrt(product) : 0.;
  });
}

std::vector<double> NgcVariogramCurves::_calculateVarioOverMado(const NgaVarioSum &sum)
{
  const double *gamma = sum.get(NgaVarioSum::VARIOGRAM);
  const double *madogram = sum.get(NgaVarioSum::MADOGRAM);
  return perLag(sum,
                [&](int lag) { return madogram[lag] < NOTHING ? 0. : gamma[lag] / madogram[lag]; });
}

std::vector<double> NgcVariogramCurves::_calculateSqrtVarioOverMado(const NgaVarioSum &sum)
{
  const double *gamma = sum.get(NgaVarioSum::VARIOGRAM);
  const double *madogram = sum.get(NgaVarioSum::MADOGRAM);
  return perLag(sum, [&](int lag) {
    return isNull(madogram[lag]) || gamma[lag] < 0. ? 0. : std::sqrt(gamma[lag]) / madogram[lag];
  });
}

// Covariances.

// K - ma t - mb h + ma mb
std::vector<double> NgcVariogramCurves::_calculateCovariance(const NgaVarioSum &sum,
                                                             const Globals &globals)
{
  if (!areDefined({globals.mean1, globals.mean2}))
    return std::vector<double>(sum.getNLags(), 0.);
  return perLag(sum, [&](int lag) {
    return sum.get(NgaVarioSum::PRODUCT)[lag] - globals.mean1 * sum.get(NgaVarioSum::TAIL_2)[lag] -
           globals.mean2 * sum.get(NgaVarioSum::HEAD_1)[lag] + globals.mean1 * globals.mean2;
  });
}

std::vector<double> NgcVariogramCurves::_calculateNonCenteredCova(const NgaVarioSum &sum)
{
  return meansOf(sum, NgaVarioSum::PRODUCT);
}

// K - h t
std::vector<double> NgcVariogramCurves::_calculateNonErgodicCova(const NgaVarioSum &sum)
{
  return perLag(sum, [&](int lag) {
    return sum.get(NgaVarioSum::PRODUCT)[lag] -
           sum.get(NgaVarioSum::HEAD_1)[lag] * sum.get(NgaVarioSum::TAIL_2)[lag];
  });
}

std::vector<double> NgcVariogramCurves::_calculateOddCovariance(const NgaVarioSum &sum,
                                                                const Globals &globals)
{
  std::vector<double> values = _calculateCovariance(sum, globals);
  splitSides(values, true);
  return values;
}

std::vector<double> NgcVariogramCurves::_calculateEvenCovariance(const NgaVarioSum &sum,
                                                                 const Globals &globals)
{
  std::vector<double> values = _calculateCovariance(sum, globals);
  splitSides(values, false);
  return values;
}

std::vector<double> NgcVariogramCurves::_calculateTransitiveCovario(const NgaVarioSum &sum)
{
  return perLag(sum, [&](int lag) {
    return sum.get(NgaVarioSum::PRODUCT)[lag] * sum.get(NgaVarioSum::WEIGHT)[lag];
  });
}

std::vector<double> NgcVariogramCurves::_calculateCorrelogram(const NgaVarioSum &sum,
                                                              const Globals &globals)
{
  if (!areDefined({globals.deviation1, globals.deviation2}) || globals.deviation1 <= NOTHING ||
      globals.deviation2 <= NOTHING)
    return std::vector<double>(sum.getNLags(), 0.);
  std::vector<double> values = _calculateCovariance(sum, globals);
  for (double &value : values)
    value /= globals.deviation1 * globals.deviation2;
  return values;
}

std::vector<double> NgcVariogramCurves::_calculateNonErgoCorrelogram(const NgaVarioSum &sum)
{
  const double *head = sum.get(NgaVarioSum::HEAD_SQUARE);
  const double *tail = sum.get(NgaVarioSum::TAIL_SQUARE);
  std::vector<double> values = _calculateNonErgodicCova(sum);
  for (int lag = 0; lag < sum.getNLags(); ++lag) {
    const bool isPossible = head[lag] > NOTHING && tail[lag] > NOTHING;
    values[lag] = isPossible ? values[lag] / (head[lag] * tail[lag]) : 0.;
  }
  return values;
}

// All of them.

std::vector<double> NgcVariogramCurves::varioValues(Vario curve, const NgaVarioSum &sum,
                                                    const NgaVarioSum &simple1,
                                                    const NgaVarioSum &simple2,
                                                    const Globals &globals)
{
  switch (curve) {
    case Vario::VARIOGRAM:
      break;
    case Vario::MADOGRAM:
      return _calculateMadogram(sum);
    case Vario::RODOGRAM:
      return _calculateRodogram(sum);
    case Vario::RELATIVE_VARIOGRAM:
      return _calculateRelVario(sum, globals);
    case Vario::NON_ERGODIC_RELATIVE_VARIOGRAM:
      return _calculateNonErgodicRelVario(sum);
    case Vario::PAIRWISE_RELATIVE_VARIOGRAM:
      return _calculatePairwiseRelVario(sum);
    case Vario::VARIOGRAM_CROSS_OVER_SIMPLE:
      return _calculateCrossOverSimpleVario(sum, simple1);
    case Vario::VARIOGRAM_CROSS_OVER_SQRT_SIMPLE:
      return _calculateCrossOverSqrtSimpleVario(sum, simple1, simple2);
    case Vario::VARIOGRAM_OVER_MADOGRAM:
      return _calculateVarioOverMado(sum);
    case Vario::SQRT_VARIOGRAM_OVER_MADOGRAM:
      return _calculateSqrtVarioOverMado(sum);
  }
  return _calculateVariogram(sum);
}

std::vector<double> NgcVariogramCurves::covaValues(Cova curve, const NgaVarioSum &sum,
                                                   const Globals &globals)
{
  const auto sides = [&] {
    switch (curve) {
      case Cova::COVARIANCE:
        break;
      case Cova::NON_CENTERED_COVARIANCE:
        return _calculateNonCenteredCova(sum);
      case Cova::NON_ERGODIC_COVARIANCE:
        return _calculateNonErgodicCova(sum);
      case Cova::ODD_PART_COVARIANCE:
        return _calculateOddCovariance(sum, globals);
      case Cova::EVEN_PART_COVARIANCE:
        return _calculateEvenCovariance(sum, globals);
      case Cova::TRANSITIVE_COVARIOGRAM:
        return _calculateTransitiveCovario(sum);
      case Cova::CORRELOGRAM:
        return _calculateCorrelogram(sum, globals);
      case Cova::NON_ERGODIC_CORRELOGRAM:
        return _calculateNonErgoCorrelogram(sum);
    }
    return _calculateCovariance(sum, globals);
  };
  std::vector<double> values = sides();
  values[values.size() / 2] = originValue(curve, globals);
  return values;
}

// Results.

NgmVariogramExpData NgcVariogramCurves::newResults(const NgmVariogramExp &request, bool cross)
{
  NgmVariogramExpData data = request.getData();
  data.createTables(request.getVarioCurveTypes(), request.getCovaCurveTypes(), cross);
  double smallest = request.getDirection(0).getLagLong();
  for (int dir = 0; dir < request.getNDirections(); ++dir) {
    const NgmPairsSelectorDirection &direction = request.getDirection(dir);
    smallest = std::min(
        smallest, direction.getNLagsShort() > 0 ? direction.getLagShort() : direction.getLagLong());
  }
  data.setMinimumLag(smallest);
  return data;
}

void NgcVariogramCurves::fillVario(NgmVariogramExpData &data, const NgmVariogramExp &request,
                                   int dir, int i, int j, const NgaVarioSum &sum,
                                   const NgaVarioSum &simple1, const NgaVarioSum &simple2,
                                   const Globals &globals)
{
  const int n = sum.getNLags();
  data.setDistances(dir, false, i, j, n, meanDistances(sum).data());
  data.setNumberOfPairs(dir, false, i, j, n, sum.getNumberOfPairs());
  for (const NgmEVarioExp &curve : request.getVarioCurveTypes())
    data.setVarioValues(dir, curve.toEnum(), i, j, n,
                        varioValues(curve.toEnum(), sum, simple1, simple2, globals).data());
}

void NgcVariogramCurves::fillCova(NgmVariogramExpData &data, const NgmVariogramExp &request,
                                  int dir, int i, int j, const NgaVarioSum &sum,
                                  const Globals &globals)
{
  const int n = sum.getNLags();
  data.setDistances(dir, true, i, j, n, meanDistances(sum).data());
  data.setNumberOfPairs(dir, true, i, j, n, sum.getNumberOfPairs());
  for (const NgmECovaExp &curve : request.getCovaCurveTypes())
    data.setCovaValues(dir, curve.toEnum(), i, j, n,
                       covaValues(curve.toEnum(), sum, globals).data());
}

void NgcVariogramCurves::fillDirection(NgmVariogramExpData &data, const NgmVariogramExp &request,
                                       int dir, const NgcVarioTask &task, int set,
                                       const NgaVarioSumList &sums, int firstSum,
                                       const NgmMultivariateStatistics &statistics, int nSamples)
{
  const auto rankOf = [&](bool isCova, int i, int j) {
    return firstSum + task.rankOf(set, isCova, i, j);
  };
  const auto nDefined = [&](int i) { return statistics.getConstUnivariateStats(i).getNDefined(); };
  for (int i = 0; i < task.nVariables; ++i) {
    for (int j = i; j < (task.cross ? task.nVariables : i + 1); ++j) {
      const Globals globals = globalsOf(
          statistics, i, j, nSamples < 0 ? int(std::min(nDefined(i), nDefined(j))) : nSamples);
      if (task.terms.variogram)
        fillVario(data, request, dir, i, j, sums.at(rankOf(false, i, j)),
                  sums.at(rankOf(false, i, i)), sums.at(rankOf(false, j, j)), globals);
      if (task.terms.covariance)
        fillCova(data, request, dir, i, j, sums.at(rankOf(true, i, j)), globals);
      for (const bool isCova : {false, true}) {
        if (sums.hasClouds() && (isCova ? task.terms.covariance : task.terms.variogram))
          NgcVarioClouds::fill(data, dir, isCova, i, j, sums.getCloud(rankOf(isCova, i, j)));
      }
    }
  }
}
