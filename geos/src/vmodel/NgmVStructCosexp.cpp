#include "geos/vmodel/NgmVStructCosexp.h"

#include "basic/error/NbeProgrammingError.h"
#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructCosexp::NgmVStructCosexp()
    : NgmAVStructAlpha(NgmEVStruct::EXPONENTIAL_COSINE,
                       NbiIntervalData(0., NbiIntervalData::Infinity, false, false))
{
  _practicalFactor = NgmVStructCosexp::_calcPracticalFactor();
}

void NgmVStructCosexp::setAuxiliaryParameter(int /*index*/, double value)
{
  if (!_setValue(value))
    throw NbeProgrammingError(QStringLiteral(
        "NgmVStructCosexp::setAuxiliaryParameter: Auxiliary parameter out of bounds"));
}

double NgmVStructCosexp::calcCova(const NbgVector3D &reducedH) const
{
  return Cosexp{_value, _scale}(reducedH.norm());
}

void NgmVStructCosexp::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Cosexp{_value, _scale}, 1., n, dist, out);
}

double NgmVStructCosexp::_calcPracticalFactor() const
{
  return 2.995732;
}
