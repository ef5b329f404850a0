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

void NgmVStructSpherical::calcCovas(const Separations &separations, double sill, bool add,
                                    double *covas, qint64 stride) const
{
  NgmVStructKernels::calcCovas(Spherical{}, _scale, separations, sill, add, covas, stride);
}
