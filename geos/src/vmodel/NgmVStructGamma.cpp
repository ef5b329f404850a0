#include "geos/vmodel/NgmVStructGamma.h"

#include "basic/error/NbeProgrammingError.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructGamma::NgmVStructGamma()
    : NgmAVStructAlpha(NgmEVStruct::GAMMA,
                       NbiIntervalData(0., NbiIntervalData::Infinity, false, false))
{
  _practicalFactor = NgmVStructGamma::_calcPracticalFactor();
}

void NgmVStructGamma::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_setValue(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructGamma::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
}

double NgmVStructGamma::calcCova(const NbgVector3D &reducedH) const
{
  return Gamma{_value}(_getReducedDistance(reducedH));
}

void NgmVStructGamma::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Gamma{_value}, _scale, n, dist, out);
}

void NgmVStructGamma::calcCovas(const Separations &separations, double sill, bool add,
                                double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Gamma{_value}, _scale, separations, sill, add, covas, stride);
}

double NgmVStructGamma::_calcPracticalFactor() const
{
  return std::pow(20., 1. / _value) - 1.;
}
