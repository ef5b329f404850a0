#include "geos/vmodel/NgmVStructCauchy.h"

#include "basic/error/NbeProgrammingError.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructCauchy::NgmVStructCauchy()
    : NgmAVStructAlpha(NgmEVStruct::GENERALIZED_CAUCHY,
                       NbiIntervalData(0., NbiIntervalData::Infinity, false, false))
{
  _practicalFactor = NgmVStructCauchy::_calcPracticalFactor();
}

void NgmVStructCauchy::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_setValue(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructCauchy::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
}

double NgmVStructCauchy::calcCova(const NbgVector3D &reducedH) const
{
  return Cauchy{_value}(_getReducedDistance(reducedH));
}

void NgmVStructCauchy::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Cauchy{_value}, _scale, n, dist, out);
}

void NgmVStructCauchy::calcCovas(const Separations &separations, double sill, bool add,
                                 double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Cauchy{_value}, _scale, separations, sill, add, covas, stride);
}

double NgmVStructCauchy::_calcPracticalFactor() const
{
  return std::sqrt(std::pow(20., 1. / _value) - 1.);
}
