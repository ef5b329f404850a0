#include "geos/simu/NgmDistributionBeta.h"

#include "basic/base/NbbGlobal.h"
#include "geos/simu/NgmDensityFunctions.h"

namespace {
constexpr int MAX_ITERATIONS = 1000;
}

NgmDistributionBeta::NgmDistributionBeta(quint64 seed, tSize size, bool trace)
    : NgmDistributionBeta(0.5, 0.5, seed, size, trace)
{
}

NgmDistributionBeta::NgmDistributionBeta(double s, double r, quint64 seed, tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Beta"), seed, size, trace),
      _s(s),
      _r(r),
      _gamma1(s, 1., nextNumber(), size, trace),
      _gamma2(r, 1., nextNumber(), size, trace)
{
}

double NgmDistributionBeta::nextR()
{
  const double g1 = _gamma1.nextR();
  const double g2 = _gamma2.nextR();
  if (!NbbGlobal::isDefined(g1) || !NbbGlobal::isDefined(g2))
    return NbbGlobal::D_FFFF;
  return g1 / (g1 + g2);
}

double NgmDistributionBeta::getDf(double value) const
{
  return NgmDensityFunctions::dfBeta(_s, _r, value);
}

double NgmDistributionBeta::getCdf(double value) const
{
  return NgmDensityFunctions::cdfBeta(_s, _r, value, MAX_ITERATIONS);
}

QString NgmDistributionBeta::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("s=%1, r=%2").arg(_s).arg(_r);
}
