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

void NgmVStructSincard::addCovaFromSquaredDist(int n, double sill, const double *squaredDist,
                                               double *sum) const
{
  NgmVStructKernels::addCovaFromSquaredDist(Sincard{}, _scale, sill, n, squaredDist, sum);
}
