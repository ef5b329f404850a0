#include "geos/vmodel/NgmVStructPower.h"

#include "basic/error/NbeProgrammingError.h"
#include "geos/simu/NgmDensityFunctions.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

namespace {

/// C0 in units of (field size / scale)^alpha. Beyond alpha = 1 it is proportional to the logarithm
/// of the gamma function.
double coefficient(int nDimensions, double alpha)
{
  const double linear[] = {1., 1., 1.5, 2.};
  const double perLogGamma[] = {0., 0.56, 1., 1.5};
  const int dimension = qBound(0, nDimensions, 3);
  if (dimension == 0 || alpha <= 1.)
    return linear[dimension];
  return perLogGamma[dimension] * NgmDensityFunctions::dfLogGamma(1. - 0.5 * alpha);
}

}  // namespace

NgmVStructPower::NgmVStructPower()
    : NgmAVStructAlpha(NgmEVStruct::POWER, NbiIntervalData(0., 2., true, true))
{
}

void NgmVStructPower::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_setValue(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructPower::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
  _setupParameters();
}

double NgmVStructPower::getAuxiliaryValue(int index) const
{
  return index == 0 ? _value : 0.;
}

double NgmVStructPower::calcCova(const NbgVector3D &reducedH) const
{
  return Power{_value, _constant}(_getReducedDistance(reducedH));
}

void NgmVStructPower::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Power{_value, _constant}, _scale, n, dist, out);
}

void NgmVStructPower::_setScaleFactor(double practicalRange)
{
  NgmAVStructAlpha::_setScaleFactor(practicalRange);
  _setupParameters();
}

void NgmVStructPower::_setupParameters()
{
  const double power = std::pow(_context.getFieldSize() / _scale, _value);
  _constant = power > 0. ? coefficient(_context.getNDimensions(), _value) * power : 0.;
}

double NgmVStructPower::_calcPracticalFactor() const
{
  return 1.;
}
