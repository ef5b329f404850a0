#include "geos/vmodel/NgmVStructStable.h"

#include "basic/error/NbeProgrammingError.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructStable::NgmVStructStable()
    : NgmAVStructAlpha(NgmEVStruct::STABLE, NbiIntervalData(0., 2., false, true))
{
  _practicalFactor = NgmVStructStable::_calcPracticalFactor();
}

void NgmVStructStable::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_setValue(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructStable::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
}

double NgmVStructStable::calcCova(const NbgVector3D &reducedH) const
{
  return Stable{_value}(_getReducedDistance(reducedH));
}

void NgmVStructStable::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Stable{_value}, _scale, n, dist, out);
}

void NgmVStructStable::calcCovas(const Separations &separations, double sill, bool add,
                                 double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Stable{_value}, _scale, separations, sill, add, covas, stride);
}

double NgmVStructStable::_calcPracticalFactor() const
{
  return std::pow(3., 1. / _value);
}
