#include "geos/vmodel/NgmVStructBesselJ.h"

#include "basic/error/NbeProgrammingError.h"
#include "geos/simu/NgmDensityFunctions.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructBesselJ::NgmVStructBesselJ()
    : NgmAVStructAlpha(NgmEVStruct::BESSEL_J,
                       NbiIntervalData(-0.5, NbiIntervalData::Infinity, false, false)),
      _logGamma(NgmDensityFunctions::dfLogGamma(_value + 1.))
{
}

void NgmVStructBesselJ::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_setValue(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructBesselJ::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
  _logGamma = NgmDensityFunctions::dfLogGamma(value + 1.);
}

double NgmVStructBesselJ::calcCova(const NbgVector3D &reducedH) const
{
  return BesselJ{_value, _logGamma, std::exp(_logGamma)}(_getReducedDistance(reducedH));
}

void NgmVStructBesselJ::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(BesselJ{_value, _logGamma, std::exp(_logGamma)}, _scale, n, dist, out);
}

double NgmVStructBesselJ::_calcPracticalFactor() const
{
  return 1.;
}
