#include "geos/simu/NgmDistributionUniformD.h"

#include "geos/simu/NgmDensityFunctions.h"

NgmDistributionUniformD::NgmDistributionUniformD(quint64 seed, tSize size, bool trace)
    : NgmDistributionUniformD(0., 1., seed, size, trace)
{
}

NgmDistributionUniformD::NgmDistributionUniformD(double min, double max, quint64 seed, tSize size,
                                                 bool trace)
    : NbbCloneable(QStringLiteral("UniformR"), seed, size, trace), _min(min), _max(max)
{
}

void NgmDistributionUniformD::skip(qint64 n)
{
  for (qint64 i = 0; i < n; ++i)
    nextNumber();
}

double NgmDistributionUniformD::getDf(double value) const
{
  return NgmDensityFunctions::dfUniformR(value, _min, _max);
}

double NgmDistributionUniformD::getCdf(double value) const
{
  return NgmDensityFunctions::cdfUniformR(value, _min, _max);
}

double NgmDistributionUniformD::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfUniformR(p, _min, _max);
}

QString NgmDistributionUniformD::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("min=%1, max=%2").arg(_min).arg(_max);
}
