#include "geos/simu/NgmDistributionGamma.h"

#include "basic/base/NbbGlobal.h"
#include "geos/simu/NgmDensityFunctions.h"

#include <cmath>

NgmDistributionGamma::NgmDistributionGamma(quint64 seed, tSize size, bool trace)
    : NgmDistributionGamma(1., 1., seed, size, trace)
{
}

NgmDistributionGamma::NgmDistributionGamma(double alpha, double scale, quint64 seed, tSize size,
                                           bool trace)
    : NbbCloneable(QStringLiteral("Gamma"), seed, size, trace),
      _alpha(alpha),
      _scale(scale),
      _uniform1(nextNumber(), size, trace),
      _uniform2(nextNumber(), size, trace)
{
}

double NgmDistributionGamma::nextR()
{
  if (!(_alpha > 0.) || !NbbGlobal::isDefined(_alpha))
    return NbbGlobal::D_FFFF;
  if (std::abs(_alpha - 1.) < 1e-5)
    return -_scale * std::log(_uniform1.nextR());
  return _scale * (_alpha < 1. ? _nextBelowOne() : _nextAboveOne());
}

double NgmDistributionGamma::_nextBelowOne()
{
  const double c = _alpha / 2.718281828 + 1.;
  for (;;) {
    const double p = c * _uniform2.nextR();
    const double u = _uniform1.nextR();
    if (p > 1.) {
      const double y = -std::log((c - p) / _alpha);
      if (std::log(u) <= (_alpha - 1.) * std::log(y))
        return y;
    } else {
      const double y = std::pow(p, 1. / _alpha);
      if (u < std::exp(-y))
        return y;
    }
  }
}

double NgmDistributionGamma::_nextAboveOne()
{
  const double s = std::sqrt(2. * _alpha - 1.);
  for (;;) {
    double t = 0.;
    double y = 0.;
    do {
      t = std::tan((_uniform1.nextR() - 0.5) * M_PI);
      y = s * t + (_alpha - 1.);
    } while (y < 0.);
    const double bound =
        (1. + t * t) * std::exp((_alpha - 1.) * std::log(y / (_alpha - 1.)) - s * t);
    if (_uniform2.nextR() <= bound)
      return y;
  }
}

double NgmDistributionGamma::getDf(double value) const
{
  return NgmDensityFunctions::dfGamma(_alpha, value / _scale) / _scale;
}

double NgmDistributionGamma::getCdf(double value) const
{
  return NgmDensityFunctions::cdfGamma(_alpha, value / _scale);
}

double NgmDistributionGamma::getInvCdf(double p) const
{
  return _scale * NgmDensityFunctions::invCdfGamma(_alpha, p);
}

QString NgmDistributionGamma::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("scale=%1, alpha=%2").arg(_scale).arg(_alpha);
}
