#include "geos/simu/NgmDistributionStable.h"

#include "basic/base/NbbGlobal.h"
#include "simu/private/NgmStableLaw.h"

#include <cmath>

namespace {

bool isIndex(double alpha)
{
  return alpha > 0. && alpha <= 2.;
}

}  // namespace

NgmDistributionStable::NgmDistributionStable(quint64 seed, tSize size, bool trace)
    : NgmDistributionStable(0.5, seed, size, trace)
{
}

NgmDistributionStable::NgmDistributionStable(double alpha, quint64 seed, tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Stable"), seed, size, trace),
      _alpha(alpha),
      _uniform1(nextNumber(), size, trace),
      _uniform2(nextNumber(), size, trace)
{
}

double NgmDistributionStable::nextR()
{
  const double phi = (2. * _uniform1.nextR() - 1.) * M_PI_2;
  if (std::abs(_alpha - 1.) < NgmStableLaw::CAUCHY_TOLERANCE)
    return std::tan(phi);
  const double w = -std::log(_uniform2.nextR());
  return std::sin(_alpha * phi) * std::pow(std::cos((1. - _alpha) * phi) / w, 1. / _alpha - 1.) /
         std::pow(std::cos(phi), 1. / _alpha);
}

double NgmDistributionStable::getDf(double value) const
{
  return isIndex(_alpha) ? NgmStableLaw::density(_alpha, value) : NbbGlobal::D_FFFF;
}

double NgmDistributionStable::getCdf(double value) const
{
  return isIndex(_alpha) ? NgmStableLaw::distribution(_alpha, value) : NbbGlobal::D_FFFF;
}

QString NgmDistributionStable::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("alpha=%1").arg(_alpha);
}
