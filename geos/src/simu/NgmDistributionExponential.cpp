#include "geos/simu/NgmDistributionExponential.h"

#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

NgmDistributionExponential::NgmDistributionExponential(quint64 seed, tSize size, bool trace)
    : NgmDistributionExponential(1., seed, size, trace)
{
}

NgmDistributionExponential::NgmDistributionExponential(double mean, quint64 seed, tSize size,
                                                       bool trace)
    : NbbCloneable(QStringLiteral("Exponential"), seed, size, trace),
      _mean(mean),
      _uniform(nextNumber(), size, trace)
{
}

double NgmDistributionExponential::nextR()
{
  return -_mean * std::log(_uniform.nextR());
}

double NgmDistributionExponential::getDf(double value) const
{
  return NgmDensityFunctions::dfExponential(value, _mean);
}

double NgmDistributionExponential::getCdf(double value) const
{
  return NgmDensityFunctions::cdfExponential(value, _mean);
}

double NgmDistributionExponential::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfExponential(p, _mean);
}

QString NgmDistributionExponential::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("mean = %1").arg(_mean);
}
