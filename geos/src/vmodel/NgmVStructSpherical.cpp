#include "geos/vmodel/NgmVStructSpherical.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructSpherical::NgmVStructSpherical() : NgmAVStruct(NgmEVStruct::SPHERICAL)
{
  _practicalFactor = 1.;
}

double NgmVStructSpherical::calcCova(const NbgVector3D &reducedH) const
{
  return Spherical{}(_getReducedDistance(reducedH));
}

void NgmVStructSpherical::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Spherical{}, _scale, n, dist, out);
}

void NgmVStructSpherical::addCovas(const Separations &separations, double sill, double *sum) const
{
  NgmVStructKernels::addCovas(Spherical{}, _scale, separations, sill, sum);
}
