#include "geos/simu/NgmDistributionPoisson.h"

#include "basic/base/NbbGlobal.h"

#include <cmath>

namespace {

/// From here on, counts leave the range of 64-bit integers.
constexpr double LAMBDA_LIMIT = 0x1p62;

}  // namespace

NgmDistributionPoisson::NgmDistributionPoisson(quint64 seed, tSize size, bool trace)
    : NgmDistributionPoisson(1., seed, size, trace)
{
}

NgmDistributionPoisson::NgmDistributionPoisson(double lambda, quint64 seed, tSize size, bool trace)
    : NbbCloneable(QStringLiteral("Poisson"), seed, size, trace),
      _lambda(lambda),
      _gamma(nextNumber(), size, trace),
      _uniform1(nextNumber(), size, trace),
      _uniform2(nextNumber(), size, trace)
{
}

qint64 NgmDistributionPoisson::nextI()
{
  if (!(_lambda < LAMBDA_LIMIT))
    return NbbGlobal::I64_FFFF;
  double lambda = _lambda;
  qint64 k = 0;
  while (lambda >= 16.) {
    const qint64 m = qint64(std::floor(0.875 * lambda));
    _gamma.setParam(double(m));
    const double g = _gamma.nextR();
    if (!NbbGlobal::isDefined(g))
      return NbbGlobal::I64_FFFF;
    if (lambda < g) {
      const double limit = lambda / g;
      for (qint64 i = 0; i < m; ++i)
        k += _uniform1.nextR() <= limit ? 1 : 0;
      return k;
    }
    lambda -= g;
    k += m;
  }

  const double limit = std::exp(-lambda);
  qint64 nFactors = 0;
  double product = 1.;
  do {
    product *= _uniform2.nextR();
    ++nFactors;
  } while (product >= limit);
  return k + nFactors - 1;
}

QString NgmDistributionPoisson::getParamInfo(const NbdVariableDetails & /*details*/) const
{
  return QStringLiteral("lambda=%1").arg(_lambda);
}
