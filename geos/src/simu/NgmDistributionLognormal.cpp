#include "geos/simu/NgmDistributionLognormal.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDetails.h"
#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

NgmDistributionLognormal::NgmDistributionLognormal(quint64 seed, tSize size, bool trace)
    : NgmDistributionLognormal(0., 1., 0., seed, size, trace)
{
}

NgmDistributionLognormal::NgmDistributionLognormal(double mean, double stdev, double shift,
                                                   quint64 seed, tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Lognormal"), seed, size, trace),
      _mean(mean),
      _stdev(stdev),
      _shift(shift)
{
}

double NgmDistributionLognormal::getDf(double value) const
{
  return NgmDensityFunctions::dfGaussian(value, _mean, _stdev);
}

double NgmDistributionLognormal::getCdf(double value) const
{
  return NgmDensityFunctions::cdfGaussian(value, _mean, _stdev);
}

double NgmDistributionLognormal::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfGaussian(p, _mean, _stdev);
}

double NgmDistributionLognormal::getTransfo(double value, const NbdVariableDetails &details) const
{
  if (!NbbGlobal::isDefined(value) || value + _shift <= 0.)
    return NbbGlobal::D_FFFF;
  const double shifted = details.getDisplayTransfo().transform(value) + _shift;
  return shifted > 0. ? std::log(shifted) : NbbGlobal::D_FFFF;
}

double NgmDistributionLognormal::getInvTransfo(double value,
                                               const NbdVariableDetails &details) const
{
  if (!NbbGlobal::isDefined(value))
    return NbbGlobal::D_FFFF;
  return std::exp(details.getDisplayTransfo().invTransform(value)) - _shift;
}

QString NgmDistributionLognormal::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("mean=%1, stdev=%2, shift=%3").arg(_mean).arg(_stdev).arg(_shift);
}
