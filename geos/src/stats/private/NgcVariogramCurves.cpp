#include "stats/private/NgcVariogramCurves.h"

#include "basic/base/NbbGlobal.h"
#include "geos/stats/NgaVarioSum.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"

#include <cmath>

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

bool areDefined(std::initializer_list<double> values)
{
  for (const double value : values) {
    if (!NbbGlobal::isDefined(value))
      return false;
  }
  return true;
}

double relative(double gamma, const Globals &globals)
{
  if (!areDefined({globals.mean1, globals.mean2}) || isNull(globals.mean1) || isNull(globals.mean2))
    return 0.;
  return gamma / (globals.mean1 * globals.mean2);
}

double nonErgodicRelative(const NgaVarioSum &sum, int lag)
{
  const double head1 = sum.get(NgaVarioSum::HEAD_1)[lag];
  const double tail2 = sum.get(NgaVarioSum::TAIL_2)[lag];
  const double divisor = (head1 + sum.get(NgaVarioSum::TAIL_1)[lag]) *
                         (sum.get(NgaVarioSum::HEAD_2)[lag] + tail2) / 4.;
  if (isNull(head1) || isNull(tail2) || divisor == 0.)
    return 0.;
  return sum.get(NgaVarioSum::VARIOGRAM)[lag] / divisor;
}

double overSqrtSimple(double gamma, double simple1, double simple2)
{
  const double product = simple1 * simple2;
  return product > 0. ? gamma / std::sqrt(product) : 0.;
}

double sqrtOverMadogram(double gamma, double madogram)
{
  return isNull(madogram) || gamma < 0. ? 0. : std::sqrt(gamma) / madogram;
}

/// K - ma t - mb h + ma mb
double centred(const NgaVarioSum &sum, int lag, const Globals &globals)
{
  if (!areDefined({globals.mean1, globals.mean2}))
    return 0.;
  return sum.get(NgaVarioSum::PRODUCT)[lag] - globals.mean1 * sum.get(NgaVarioSum::TAIL_2)[lag] -
         globals.mean2 * sum.get(NgaVarioSum::HEAD_1)[lag] + globals.mean1 * globals.mean2;
}

/// K - h t
double nonErgodic(const NgaVarioSum &sum, int lag)
{
  return sum.get(NgaVarioSum::PRODUCT)[lag] -
         sum.get(NgaVarioSum::HEAD_1)[lag] * sum.get(NgaVarioSum::TAIL_2)[lag];
}

double correlogram(const NgaVarioSum &sum, int lag, const Globals &globals)
{
  if (!areDefined({globals.deviation1, globals.deviation2}) || globals.deviation1 <= NOTHING ||
      globals.deviation2 <= NOTHING)
    return 0.;
  return centred(sum, lag, globals) / (globals.deviation1 * globals.deviation2);
}

double nonErgodicCorrelogram(const NgaVarioSum &sum, int lag)
{
  const double head = sum.get(NgaVarioSum::HEAD_SQUARE)[lag];
  const double tail = sum.get(NgaVarioSum::TAIL_SQUARE)[lag];
  return head > NOTHING && tail > NOTHING ? nonErgodic(sum, lag) / (head * tail) : 0.;
}

double covaValue(Cova curve, const NgaVarioSum &sum, int lag, const Globals &globals)
{
  switch (curve) {
    case Cova::NON_CENTERED_COVARIANCE:
      return sum.get(NgaVarioSum::PRODUCT)[lag];
    case Cova::NON_ERGODIC_COVARIANCE:
      return nonErgodic(sum, lag);
    case Cova::TRANSITIVE_COVARIOGRAM:
      return sum.get(NgaVarioSum::PRODUCT)[lag] * sum.get(NgaVarioSum::WEIGHT)[lag];
    case Cova::CORRELOGRAM:
      return correlogram(sum, lag, globals);
    case Cova::NON_ERGODIC_CORRELOGRAM:
      return nonErgodicCorrelogram(sum, lag);
    case Cova::COVARIANCE:
    case Cova::ODD_PART_COVARIANCE:
    case Cova::EVEN_PART_COVARIANCE:
      break;
  }
  return centred(sum, lag, globals);
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
  std::vector<double> distances(sum.getNLags(), 0.);
  for (int lag = 0; lag < sum.getNLags(); ++lag) {
    if (hasWeight(sum, lag))
      distances[lag] = sum.get(NgaVarioSum::DISTANCE)[lag] / sum.get(NgaVarioSum::WEIGHT)[lag];
  }
  return distances;
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

std::vector<double> NgcVariogramCurves::varioValues(Vario curve, const NgaVarioSum &sum,
                                                    const NgaVarioSum &simple1,
                                                    const NgaVarioSum &simple2,
                                                    const Globals &globals)
{
  const double *gamma = sum.get(NgaVarioSum::VARIOGRAM);
  const double *gamma1 = simple1.get(NgaVarioSum::VARIOGRAM);
  const double *gamma2 = simple2.get(NgaVarioSum::VARIOGRAM);
  const double *madogram = sum.get(NgaVarioSum::MADOGRAM);
  const auto valueOf = [&](int lag) {
    switch (curve) {
      case Vario::VARIOGRAM:
        break;
      case Vario::MADOGRAM:
        return madogram[lag];
      case Vario::RODOGRAM:
        return sum.get(NgaVarioSum::RODOGRAM)[lag];
      case Vario::RELATIVE_VARIOGRAM:
        return relative(gamma[lag], globals);
      case Vario::NON_ERGODIC_RELATIVE_VARIOGRAM:
        return nonErgodicRelative(sum, lag);
      case Vario::PAIRWISE_RELATIVE_VARIOGRAM:
        return sum.get(NgaVarioSum::PAIRWISE)[lag];
      case Vario::VARIOGRAM_CROSS_OVER_SIMPLE:
        return gamma1[lag] < NOTHING ? 0. : gamma[lag] / gamma1[lag];
      case Vario::VARIOGRAM_CROSS_OVER_SQRT_SIMPLE:
        return overSqrtSimple(gamma[lag], gamma1[lag], gamma2[lag]);
      case Vario::VARIOGRAM_OVER_MADOGRAM:
        return madogram[lag] < NOTHING ? 0. : gamma[lag] / madogram[lag];
      case Vario::SQRT_VARIOGRAM_OVER_MADOGRAM:
        return sqrtOverMadogram(gamma[lag], madogram[lag]);
    }
    return gamma[lag];
  };
  std::vector<double> values(sum.getNLags(), 0.);
  for (int lag = 0; lag < sum.getNLags(); ++lag) {
    if (hasWeight(sum, lag))
      values[lag] = valueOf(lag);
  }
  return values;
}

std::vector<double> NgcVariogramCurves::covaValues(Cova curve, const NgaVarioSum &sum,
                                                   const Globals &globals)
{
  std::vector<double> values(sum.getNLags(), 0.);
  for (int lag = 0; lag < sum.getNLags(); ++lag) {
    if (hasWeight(sum, lag))
      values[lag] = covaValue(curve, sum, lag, globals);
  }
  if (curve == Cova::ODD_PART_COVARIANCE || curve == Cova::EVEN_PART_COVARIANCE)
    splitSides(values, curve == Cova::ODD_PART_COVARIANCE);
  values[values.size() / 2] = originValue(curve, globals);
  return values;
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
