#include "geos/vmodel/NgmVStructSincard.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructSincard::NgmVStructSincard() : NgmAVStruct(NgmEVStruct::SINCARD)
{
  _practicalFactor = 20.371;
}

double NgmVStructSincard::calcCova(const NbgVector3D &reducedH) const
{
  return Sincard{}(_getReducedDistance(reducedH));
}

void NgmVStructSincard::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Sincard{}, _scale, n, dist, out);
}

void NgmVStructSincard::calcCovas(const Separations &separations, double sill, bool add,
                                  double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Sincard{}, _scale, separations, sill, add, covas, stride);
}
