#include "geos/simu/NgmDistributionGaussian.h"

#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

NgmDistributionGaussian::NgmDistributionGaussian(quint64 seed, tSize size, bool trace)
    : NgmDistributionGaussian(0., 1., seed, size, trace)
{
}

NgmDistributionGaussian::NgmDistributionGaussian(double mean, double stdev, quint64 seed,
                                                 tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Gaussian"), seed, size, trace),
      _mean(mean),
      _stdev(stdev),
      _uniform1(nextNumber(), size, trace),
      _uniform2(nextNumber(), size, trace)
{
}

double NgmDistributionGaussian::nextR()
{
  const double u = _uniform1.nextR();
  const double v = _uniform2.nextR();
  return _mean + _stdev * std::sqrt(-2. * std::log(u)) * std::cos(2. * M_PI * v);
}

void NgmDistributionGaussian::skip(qint64 n)
{
  _uniform1.skip(n);
  _uniform2.skip(n);
}

double NgmDistributionGaussian::getDf(double value) const
{
  return NgmDensityFunctions::dfGaussian(value, _mean, _stdev);
}

double NgmDistributionGaussian::getCdf(double value) const
{
  return NgmDensityFunctions::cdfGaussian(value, _mean, _stdev);
}

double NgmDistributionGaussian::getInvCdf(double p) const
{
  return NgmDensityFunctions::invCdfGaussian(p, _mean, _stdev);
}

QString NgmDistributionGaussian::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("mean=%1, stdev=%2").arg(_mean).arg(_stdev);
}
