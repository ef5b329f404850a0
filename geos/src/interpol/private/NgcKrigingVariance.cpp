#include "interpol/private/NgcKrigingVariance.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"

#include <algorithm>
#include <cmath>

namespace {

using NgcKrigingVariance::Targets;

/// to[p] = conversion(from[p]) at the targets; from and to may be the same.
template <class Conversion>
void convert(const Targets &targets, const double *from, double *to, Conversion conversion)
{
  if (!from || !to)
    return;
  for (std::size_t k = 0; k < targets.n; ++k) {
    const int position = targets.positions[k];
    const double value = from[position];
    to[position] = NbbGlobal::isDefined(value) ? conversion(value) : NbbGlobal::D_FFFF;
  }
}

}  // namespace

void NgcKrigingVariance::transform(const Targets &targets, const Flags &flags, const NgmMatrix &c0,
                                   const Columns &variances, const Columns &standardDeviations)
{
  if (flags.indicator && (flags.standardDeviation || flags.variance))
    throw NbeProgrammingError(QStringLiteral("invalid arguments"));
  const auto toRoot = [](double value) { return value > 0. ? std::sqrt(value) : 0.; };
  for (std::size_t v = 0; v < variances.size(); ++v) {
    if (flags.indicator) {
      const double twice = c0.getElement(int(v), int(v)) * 2.;
      convert(targets, variances[v], variances[v],
              [twice](double value) { return value > 0. ? value / twice : 0.; });
    } else if (flags.standardDeviation) {
      convert(targets, variances[v], standardDeviations[v], toRoot);
    }
  }
}

void NgcKrigingVariance::computeSuperKriging(const Targets &targets, const SuperKriging &parameters,
                                             const Columns &variances, const Columns &ssdv,
                                             const Columns &specificVolumes,
                                             const Columns &coefficientsOfVariation)
{
  const double volume = parameters.blockVolume;
  const double squaredMean = parameters.mean * parameters.mean;
  const double production = parameters.productionVolume;
  const bool hasMean = NbbGlobal::isDefined(parameters.mean) && squaredMean > 0.;
  const bool hasProduction = hasMean && NbbGlobal::isDefined(production) && production > 0.;
  for (std::size_t v = 0; v < variances.size(); ++v) {
    convert(targets, variances[v], ssdv[v],
            [=](double value) { return std::max(value, 0.) * volume; });
    if (hasMean)
      convert(targets, variances[v], specificVolumes[v],
              [=](double value) { return std::max(value, 0.) * volume / squaredMean; });
    if (hasProduction)
      convert(targets, variances[v], coefficientsOfVariation[v], [=](double value) {
        return std::sqrt(std::max(value, 0.) * volume / squaredMean / production);
      });
  }
}
