#include "geos/simu/NgmDistributionCauchy.h"

#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

NgmDistributionCauchy::NgmDistributionCauchy(quint64 seed, tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Cauchy"), seed, size, trace), _uniform(nextNumber(), size, trace)
{
}

double NgmDistributionCauchy::nextR()
{
  return std::tan((2. * _uniform.nextR() - 1.) * M_PI_2);
}

double NgmDistributionCauchy::getDf(double value) const
{
  return NgmDensityFunctions::dfCauchy(value);
}

double NgmDistributionCauchy::getCdf(double value) const
{
  return NgmDensityFunctions::cdfCauchy(value);
}

double NgmDistributionCauchy::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfCauchy(p);
}

QString NgmDistributionCauchy::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("No distribution parameter");
}
