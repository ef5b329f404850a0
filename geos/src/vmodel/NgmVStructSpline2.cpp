#include "geos/vmodel/NgmVStructSpline2.h"

#include "vmodel/private/NgmVStructKernels.h"

using namespace NgmVStructKernels;

NgmVStructSpline2::NgmVStructSpline2() : NgmAVStruct(NgmEVStruct::SPLINE2_GC) {}

double NgmVStructSpline2::calcCova(const NbgVector3D &reducedH) const
{
  return Spline2Gc{}(_getReducedDistance(reducedH));
}

void NgmVStructSpline2::calcCovaFromDist(int n, const double *dist, double *out) const
{
  covaFromDist(Spline2Gc{}, _scale, n, dist, out);
}

double NgmVStructSpline2::calcFirstDerivative(const NbgVector3D &reducedH) const
{
  const double u = _getReducedDistance(reducedH);
  return u > 1e-10 ? (4. * (std::log(u) - 0.75) + 1.) * u * u + 2. : 2.;
}

double NgmVStructSpline2::calcSecondDerivative(const NbgVector3D &reducedH) const
{
  const double u = _getReducedDistance(reducedH);
  return u > 1e-10 ? (12. * (std::log(u) - 0.75) + 7.) * u * u + 2. : 2.;
}
