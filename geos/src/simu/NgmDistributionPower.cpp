#include "geos/simu/NgmDistributionPower.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDetails.h"
#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

NgmDistributionPower::NgmDistributionPower(quint64 seed, tSize size, bool trace)
    : NgmDistributionPower(0., 1., 1., seed, size, trace)
{
}

NgmDistributionPower::NgmDistributionPower(double mean, double stdev, double scale, quint64 seed,
                                           tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Power"), seed, size, trace),
      _mean(mean),
      _stdev(stdev),
      _scale(scale)
{
}

double NgmDistributionPower::getDf(double value) const
{
  return NgmDensityFunctions::dfGaussian(value, _mean, _stdev);
}

double NgmDistributionPower::getCdf(double value) const
{
  return NgmDensityFunctions::cdfGaussian(value, _mean, _stdev);
}

double NgmDistributionPower::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfGaussian(p, _mean, _stdev);
}

double NgmDistributionPower::getLowerBound() const
{
  return 0.;
}

double NgmDistributionPower::getUpperBound() const
{
  return NbbGlobal::D_BIG_POSITIVE;
}

double NgmDistributionPower::getTransfo(double value, const NbdVariableDetails &details) const
{
  if (!NbbGlobal::isDefined(value))
    return NbbGlobal::D_FFFF;
  return value > 0. ? std::pow(details.getDisplayTransfo().transform(value), _scale)
                    : NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE;
}

double NgmDistributionPower::getInvTransfo(double value, const NbdVariableDetails &details) const
{
  if (!NbbGlobal::isDefined(value))
    return NbbGlobal::D_FFFF;
  return value > 0. ? std::pow(details.getDisplayTransfo().invTransform(value), 1. / _scale)
                    : NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE;
}

QString NgmDistributionPower::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("mean=%1, stdev=%2, scale=%3").arg(_mean).arg(_stdev).arg(_scale);
}
